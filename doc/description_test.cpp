#include "doc/description.h"

#include <gtest/gtest.h>

#include "check/text/read_text.h"

namespace {

// "NAME[SECTION]: PARAGRAPH / PARAGRAPH" of each name, in name order.
std::vector<std::string> described(const std::string& text) {
  const SourceText source("device", text);
  Findings findings;
  ReadText read;
  readText(source, read, findings);
  EXPECT_TRUE(findings.all().empty());
  std::vector<std::string> lines;
  std::map<std::string_view, Description> byName;
  for (const auto& [record, description] : describe(source, read.layout)) {
    byName[record->name] = description;
  }
  for (const auto& [name, description] : byName) {
    std::string line = std::string(name) + "[" + description.section + "]:";
    for (const std::string& paragraph : description.paragraphs) {
      line += (line.ends_with(':') ? " " : " / ") + paragraph;
    }
    lines.push_back(line);
  }
  return lines;
}

TEST(Description, IsTheCommentLinesDirectlyBefore) {
  const struct {
    const char* text;
    std::vector<std::string> described;
  } cases[] = {
      {"# The gain.\na rw { }\n", {"a[]: The gain."}},
      {"# The gain\n#   of all.\na rw { }\n", {"a[]: The gain of all."}},
      {"  #The gain.\n\t#\n# Unity is 1.\na rw { }\n", {"a[]: The gain. / Unity is 1."}},
      {"# Far away.\n\na rw { }\n", {"a[]:"}},
      {"# One.\na rw { }\nb rw { }\n", {"a[]: One.", "b[]:"}},
      {"# Both.\na rw { } b rw { }\n", {"a[]: Both.", "b[]: Both."}},
      {"a rw {\n# Of a statement.\n} b rw { }\n", {"a[]:", "b[]:"}},
      {"a rw {\n# Inside.\n}\n# Other.\nb rw { }\n", {"a[]:", "b[]: Other."}},
      {"# One.\na rw { }\n# Two.\na rw { }\n", {"a[]: One. / Two."}},
      {"# One.\n# check: allow unused-index\na rw { }\n", {"a[]: One."}},
      {"#####\n# One.\n# ---\na rw { }\n", {"a[]:"}},
      {"#####\n# One.\na rw { }\n", {"a[]: One."}},
      {"# One.\r\na rw { }\r\n", {"a[]: One."}},
  };
  for (const auto& c : cases) EXPECT_EQ(described(c.text), c.described) << c.text;
}

TEST(Description, KnowsTheSectionOfAName) {
  EXPECT_EQ(
      described("a rw { }\n"
                "# ---- Picture and sound ----\n"
                "# Lift.\n"
                "b rw { }\n"
                "c rw { }\n"
                "# == Alarms ==========\n"
                "d rw { }\n"
                "a rw { }\n"
                "# - no section\n"
                "e rw { }\n"),
      (std::vector<std::string>{"a[Alarms]:", "b[Picture and sound]: Lift.",
                                "c[Picture and sound]:", "d[Alarms]:", "e[Alarms]: - no section"}));
}

}  // namespace
