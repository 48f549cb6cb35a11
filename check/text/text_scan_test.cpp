#include "check/text/text_scan.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "check/text/recovery.h"

namespace {

// The parts of `text`, each behind the sign of its kind.
std::vector<std::string> partsOf(const std::string& text) {
  const SourceText source("text", text);
  TextScan scan(source, source.text(), 0);
  std::vector<std::string> parts;
  for (TextPart part = scan.next(); part.kind != PART_END; part = scan.next()) {
    parts.push_back("ws\"q#"[part.kind] + std::string(part.text));
  }
  return parts;
}

TEST(TextScan, GivesTheParts) {
  struct Case {
    std::string text;
    std::vector<std::string> parts;
  };
  const Case cases[] = {
      {"", {}},
      {" # nothing\n\t#\n", {}},
      {"a rw{b(c)}", {"wa", "wrw", "s{", "wb", "s(", "wc", "s)", "s}"}},
      {"{ 0..9,\"on\" }", {"s{", "w0..9", "s,", "\"\"on\"", "s}"}},
      {"a # b\n# c\nd // e\n/* f", {"wa", "## b", "wd", "#// e", "#/* f"}},
      // A text over two lines, and a quote that is open.
      {"\"one\ntwo\" }", {"\"\"one\ntwo\"", "s}"}},
      {"{ \"one }\n{ \"two\" }", {"s{", "q\"one", "s}", "s{", "\"\"two\"", "s}"}},
      {"{ \"one\n", {"s{", "q\"one"}},
  };
  for (const Case& c : cases) EXPECT_EQ(partsOf(c.text), c.parts) << c.text;
}

TEST(TextScan, EndsAWordWithItsPiece) {
  const std::string line(1022, ' ');
  EXPECT_EQ(partsOf(line + "abcd\n"), (std::vector<std::string>{"wab", "wcd"}));
  EXPECT_EQ(partsOf("#" + line + "ab cd\n"), (std::vector<std::string>{"wb", "wcd"}));
}

TEST(Recovery, FindsWhereTheReadingCanGoOn) {
  struct Case {
    std::string text;
    std::string statement;   // what is behind the statement at the start
    std::string definition;  // where the next definition begins
  };
  const Case cases[] = {
      {"default { = } ctrlRO (a) } b rw { }", "s ctrlRO", "d b"},
      {"default { = ctrlRO (a) } b rw { }", "s ctrlRO", "d b"},
      {"default { =\nb rw { }", "d b", "d b"},
      {"ctrlRO (a = (b)) default { 1 }", "s default", "d "},
      {"ctrlRO (a\n}\nb rw { }", "s }", "d b"},
      {"ctrlRO a } b rw { }", "s }", "d b"},
      {"rangeValid (a { 1 } } b ro { }", "s }", "d b"},
      {"default { \"a } }\nb ro { }", "s }", "d b"},
      {"default { 1", "d ", "d "},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    const SourceText source("text", c.text);
    const auto placeText = [&](const ResumePoint& point) {
      const TextPart part = TextScan(source, source.text(), point.at).next();
      return (point.what == RESUME_STATEMENT ? "s " : "d ") + std::string(part.text);
    };
    EXPECT_EQ(placeText(behindStatement({source, source.text(), 0})), c.statement);
    EXPECT_EQ(placeText(nextDefinition({source, source.text(), 0})), c.definition);
  }
}

}  // namespace
