#include "check/text/read_text.h"

#include <gtest/gtest.h>

#include "tests/support/findings.h"

namespace {

using Texts = std::vector<std::string>;

TEST(ReadText, GoesOnToTheEndAndKeepsWhatIsRight) {
  const SourceText source("text",
                          "a rw {\n"
                          "  rangeValid { on }\n"
                          "  default { 1 }\n"
                          "}\n"
                          "b rx { default { 2 } }\n"
                          "c rw { ctrlRO (a = 1) default { 3 } }\n");
  ReadText text;
  Findings findings;
  readText(source, text, findings);
  EXPECT_EQ(findings.all().size(), 3U);
  EXPECT_TRUE(text.isBroken);
  const ParameterRecords& records = text.definitions.records;
  ASSERT_NE(records.find("a"), nullptr);
  EXPECT_TRUE(records.find("a")->rangeValid.empty());
  EXPECT_FALSE(records.find("a")->defaults.empty());
  EXPECT_EQ(records.find("b")->access, ACCESS_NONE);
  ASSERT_NE(records.find("c"), nullptr);
  EXPECT_TRUE(records.find("c")->ctrlRO.empty());
  EXPECT_FALSE(records.find("c")->defaults.empty());
  EXPECT_TRUE(text.isDoubtful("a"));
  EXPECT_TRUE(text.isDoubtful("b"));
  EXPECT_FALSE(text.isDoubtful("d"));
}

TEST(ReadText, TellsTheLayoutInWholeLines) {
  const std::string blanks(2000, ' ');
  const SourceText source("text", "a rw {" + blanks + "default { 1 }\n}\nb rw { }\n");
  ReadText text;
  Findings findings;
  readText(source, text, findings);
  EXPECT_FALSE(text.isBroken);
  ASSERT_EQ(text.layout.definitions.size(), 2U);
  const DefinitionLayout& a = text.layout.definitions.front();
  ASSERT_EQ(a.statements.size(), 1U);
  EXPECT_EQ(a.statements.front().extent.from.line, 1U);
  EXPECT_EQ(a.statements.front().extent.from.column, 2006U);
  EXPECT_EQ(a.extent.to.line, 2U);
  EXPECT_EQ(text.layout.definitions.back().name.line, 3U);
}

TEST(ReadText, SaysWhatBecomesOfALongLine) {
  const std::string piece = " of 1024 bytes, each as a line of its own";
  struct Case {
    std::string text;
    Texts findings;
  };
  const Case cases[] = {
      {"a rw { }" + std::string(1015, ' ') + "\n", {}},  // 1023 bytes
      {"a rw { }" + std::string(1016, ' ') + "\n",
       {"1:1025 warning: a line of 1024 bytes is read in pieces" + piece + " [long-line]"}},
      {"a rw { }" + std::string(1016, ' '), {}},  // no newline needs a place
      {"a rw { default { \"" + std::string(1100, 'x') + "\" } }\n",
       {"1:1025 warning: a line of 1123 bytes is read in pieces" + piece + " [long-line]"}},
      {"a rw {" + std::string(1015, ' ') + "default { 1 } }\n",
       {"1:1025 error: a line of 1036 bytes is read in pieces" + piece +
        ", and a word is cut in two here [long-line]"}},
      {"#" + std::string(1023, ' ') + "a b c\nd rw { }\n",
       {"1:1025 error: a line of 1029 bytes is read in pieces" + piece +
        ", and the rest of this comment as definitions [long-line]"}},
      {"#" + std::string(1023, ' ') + "a\nd rw { }\n",
       {"1:1025 error: a line of 1025 bytes is read in pieces" + piece +
        ", and the rest of this comment as definitions [long-line]"}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_EQ(findingsOfReading(c.text), c.findings);
  }
}

TEST(ReadText, CutsWordsOfALongLineOnly) {
  struct Case {
    std::string before;
    std::string behind;
    bool isCut;
  };
  const Case cases[] = {
      {"rangeValid { 0", "..9 }", false},   {"rangeValid { 0..", "9 }", false},
      {"rangeValid { 0.", ".9 }", true},    {"rangeValid { 1", "2 }", true},
      {"rangeValid { \"a", "b\" }", false}, {"ctrlRO (b", "+1)", false},
      {"ctrlRO (b+", "1)", false},          {"ctrlRO (b <", "< 1)", true},
      {"ctrlRO (b", "b == 1)", true},       {"range", "Valid { 1 }", true},
      {"valueChange { 1 -", "> 2 }", true}, {"valueChange { 1 ->", "2 }", false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.before + "|" + c.behind);
    std::string text = "b rw { } bb rw { } a rw { " + c.before;
    text.insert(18, 1024 - text.size(), ' ');
    const std::vector<std::string> found = findingTexts(findingsOf(text + c.behind + " }\n"));
    ASSERT_EQ(found.size(), 1U) << found.back();
    EXPECT_EQ(found[0].starts_with("1:1025 error: "), c.isCut) << found[0];
    EXPECT_EQ(found[0].find("cut in two") != std::string::npos, c.isCut) << found[0];
  }
}

TEST(ReadText, RefusesBytesThatNoTextHas) {
  using namespace std::string_literals;
  struct Case {
    std::string text;
    Texts findings;
  };
  const Case cases[] = {
      {"# \0\na rw { }\n"s, {}},
      {"a rw { de\0fault { 1 } }\n"s, {"1:10 error: a text cannot hold a NUL byte [syntax]"}},
      {"a rw {\0\n\0\0}\n# \0\nb rw { \0}\n"s,
       {"1:7 error: a text cannot hold a NUL byte [syntax]"}},
      {"a rw { \0\n}\n"s, {"1:8 error: a text cannot hold a NUL byte [syntax]"}},
      {"a rw { default { \"\0\" } } b rw { = }\n"s,
       {"1:19 error: a text cannot hold a NUL byte [syntax]"}},
      {"\xFF\xFE"s + "a\0 \0r\0w\0"s, {"error: the text is in UTF-16: write it in UTF-8 [syntax]"}},
      {"\xEF\xBB\xBF# c\na rw { }\n", {}},
      {"\xEF\xBB\xBF" + "a rw { = }\n"s,
       {"1:8 error: there is no statement \"=\": rangeValid, rangeDoc, ctrlRO, ctrlValid, default, "
        "valueChange or index is expected, or \"}\" [unknown-keyword]"}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_EQ(findingsOfReading(c.text), c.findings);
  }
}

TEST(ReadText, ComesToAnEndWhereEverythingIsOpen) {
  constexpr size_t COUNT = 2000;
  for (const char* line :
       {"a rw { ctrlRO (b == 1 }\n", "a rw { default { \"x } }\n", "a rw { ctrlRO (b[1 == 2) }\n",
        "a rw { default { 1\n", "a { (\n", "= ", "# a", "a # ", "\"", "}", "{", "a rw"}) {
    std::string text;
    for (size_t i = 0; i < COUNT; ++i) text += line;
    EXPECT_LE(findingsOfReading(text).size(), 2 * COUNT) << line;
  }
}

TEST(ReadText, TellsOnceOfWhatIsNoText) {
  std::string random;
  uint32_t state = 1;
  while (random.size() < 5000) {
    state = state * 1664525 + 1013904223;
    random += static_cast<char>(state >> 24U);
  }
  const std::string line = "gain rw { rangeValid { 0..9 } }\n";
  std::string wide;
  for (const char c : line) wide += {c, '\0'};
  const std::pair<std::string, std::string> cases[] = {
      {wide, "error: the text is in UTF-16: write it in UTF-8 [syntax]"},
      {random.substr(0, 300) + line, ""},
      {random, ""},
  };
  for (const auto& [text, finding] : cases) {
    const std::vector<std::string> found = findingsOfReading(text);
    ASSERT_EQ(found.size(), 1U);
    if (finding.empty()) {
      EXPECT_NE(found[0].find("error: this file is no text: "), std::string::npos) << found[0];
    } else {
      EXPECT_EQ(found[0], finding);
    }
  }
  // The daemon reads it.
  EXPECT_EQ(findingsOfReading("# " + std::string(50, '\1') + "\n" + line).size(), 0U);
}

}  // namespace
