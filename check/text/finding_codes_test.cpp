#include "check/text/finding_codes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>

namespace {

TEST(FindingCodes, AreInOrderAndFoundByName) {
  const std::span<const FindingCode> codes = findingCodes();
  EXPECT_TRUE(std::ranges::is_sorted(codes, {}, &FindingCode::name));
  for (const FindingCode& code : codes) {
    EXPECT_EQ(findFindingCode(code.name), &code);
    const bool isKebab = std::ranges::all_of(
        code.name, [](char c) { return std::islower(static_cast<unsigned char>(c)) || c == '-'; });
    EXPECT_TRUE(isKebab) << code.name;
  }
  EXPECT_EQ(findFindingCode("octl"), nullptr);
  EXPECT_EQ(nearestFindingCode("octl"), findFindingCode("octal"));
  EXPECT_EQ(nearestFindingCode("xyz"), nullptr);
}

TEST(FindingCodes, AreExplainedInLinesThatFitATerminal) {
  for (const FindingCode& code : findingCodes()) {
    SCOPED_TRACE(code.name);
    EXPECT_LE(code.summary.size(), 47U);  // behind name and level, in 80 columns
    EXPECT_FALSE(code.summary.empty());
    EXPECT_FALSE(code.summary.ends_with('.'));
    std::string_view rest = code.explanation;
    while (!rest.empty()) {
      const size_t newline = rest.find('\n');
      ASSERT_NE(newline, std::string_view::npos);
      EXPECT_LE(newline, 80U) << rest.substr(0, newline);
      rest.remove_prefix(newline + 1);
    }
  }
}

TEST(FindingCodes, SayWhatCannotBeSilenced) {
  EXPECT_TRUE(findFindingCode("syntax")->isRefusal(LEVEL_ERROR));
  EXPECT_FALSE(findFindingCode("long-line")->isRefusal(LEVEL_WARNING));
  EXPECT_TRUE(findFindingCode("constant-condition")->isRefusal(LEVEL_ERROR));
  EXPECT_FALSE(findFindingCode("uncovered")->isRefusal(LEVEL_ERROR));
}

TEST(FindingCodes, GiveFindingsTheirLevel) {
  Finding finding = {"uncovered", {}, {}};
  EXPECT_EQ(levelOf(finding), LEVEL_ERROR);
  finding.level = LEVEL_WARNING;
  EXPECT_EQ(levelOf(finding), LEVEL_WARNING);
  EXPECT_STREQ(levelWord(LEVEL_ERROR), "error");
  EXPECT_STREQ(levelWord(LEVEL_WARNING), "warning");
  EXPECT_STREQ(levelWord(LEVEL_NOTE), "note");
}

}  // namespace
