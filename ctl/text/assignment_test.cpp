#include "ctl/text/assignment.h"

#include <gtest/gtest.h>

namespace {

TEST(Assignment, EndsItsNameAtTheFirstSignOutsideBrackets) {
  struct Case {
    std::string text;
    std::optional<Assignment> assignment;
  };
  const Case cases[] = {
      {"gain=5", {{"gain", "5"}}},
      {"gain=-5", {{"gain", "-5"}}},
      {"gain=", {{"gain", ""}}},
      {"gain=a=b", {{"gain", "a=b"}}},
      {"gain[1]=5", {{"gain[1]", "5"}}},
      {"gain[a=b]=5", {{"gain[a=b]", "5"}}},
      {"gain[a=b][c]=5", {{"gain[a=b][c]", "5"}}},
      {"gain[1=5", {{"gain[1", "5"}}},  // the bracket is not closed
      {"gain= 5\n", {{"gain", " 5\n"}}},
      {"gain", std::nullopt},
      {"=5", std::nullopt},
      {"", std::nullopt},
      {"gain[a=b]", std::nullopt},
  };
  for (const Case& c : cases) EXPECT_EQ(assignmentOf(c.text), c.assignment) << c.text;
}

TEST(NamePattern, FitsFullNamesAndBaseNames) {
  struct Case {
    std::string pattern;
    std::string name;
    bool fits;
  };
  const Case cases[] = {
      {"*", "gain[1]", true},
      {"g*", "gain[1]", true},
      {"ga?n", "gain[1]", true},  // all instances of the base name
      {"gain[?]", "gain[1]", true},
      {"gain[?]", "gain[12]", false},
      {"rgb[*][red]", "rgb[1][red]", true},
      {"rgb[*][red]", "rgb[1][blue]", false},
      {"g?", "gain", false},
  };
  for (const Case& c : cases) EXPECT_EQ(fitsPattern(c.pattern, c.name), c.fits) << c.pattern;
  EXPECT_TRUE(isNamePattern("a*"));
  EXPECT_TRUE(isNamePattern("a[?]"));
  EXPECT_FALSE(isNamePattern("a[1]"));
}

TEST(NameParts, AreBeforeAndInBrackets) {
  EXPECT_EQ(baseOf("gain[1][2]"), "gain");
  EXPECT_EQ(baseOf("gain"), "gain");
  EXPECT_EQ(indexCountOf("gain[1][2]"), 2U);
  EXPECT_EQ(indexCountOf("gain"), 0U);
}

TEST(SameValue, IsTheSameTextOrNumber) {
  EXPECT_TRUE(isSameValue("a", "a"));
  EXPECT_TRUE(isSameValue("0x10", "16"));
  EXPECT_TRUE(isSameValue("", ""));
  EXPECT_FALSE(isSameValue("", "0"));  // although the empty text counts as 0
  EXPECT_FALSE(isSameValue("16 ", "16"));
  EXPECT_FALSE(isSameValue("a", "b"));
}

TEST(FaultOfBrackets, IsWhatTheServicePassesOver) {
  const char* const open = "a \"[\" has no \"]\"";
  const char* const behind = "there is more behind a \"]\"";
  const struct {
    const char* name;
    const char* fault;
  } cases[] = {
      {"", ""},
      {"gain", ""},
      {"gain[2]", ""},
      {"gain[2][left]", ""},
      {"gain[]", ""},
      {"gain[[1]", ""},  // the index value "[1"
      {"gain]", ""},     // a base name
      {"[1]", ""},
      {"gain[", open},
      {"gain[1", open},
      {"gain[1][", open},
      {"gain[1]x", behind},
      {"gain[1]]", behind},
      {"gain[1]x[2]", behind},
  };
  for (const auto& [name, fault] : cases) EXPECT_EQ(faultOfBrackets(name), fault) << name;
}

}  // namespace
