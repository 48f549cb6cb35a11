#include "check/level_choices.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

// What becomes of a report with one finding of each kind.
std::string levelsAfter(const std::vector<std::string_view>& choices) {
  LevelChoices levels;
  for (const std::string_view choice : choices) EXPECT_EQ(levels.take(choice), "") << choice;
  CheckReport report;
  report.findings = {
      {"octal", {}, {}}, {"uncovered", {}, {}}, {"constant-condition", {}, {}}, {"merged", {}, {}}};
  report.findings[3].level = LEVEL_NOTE;
  report.findings.push_back({"constant-condition", {}, {}});
  report.findings.back().level = LEVEL_ERROR;  // the builder's word
  levels.apply(report);
  std::string text;
  for (const Finding& finding : report.findings) {
    text += (text.empty() ? "" : ", ") + std::string(finding.code) + " " +
            levelWord(finding.level.value());
  }
  return text;
}

TEST(LevelChoices, TheLastOneCounts) {
  const struct {
    std::vector<std::string_view> choices;
    const char* levels;
  } cases[] = {
      {{},
       "octal warning, uncovered error, constant-condition warning, merged note, "
       "constant-condition error"},
      {{"no-octal"},
       "uncovered error, constant-condition warning, merged note, constant-condition error"},
      {{"no-octal", "octal", "no-uncovered", "no-merged"},
       "octal warning, constant-condition warning, constant-condition error"},
      // What the daemon refuses stays.
      {{"no-constant-condition", "no-merged", "no-uncovered"},
       "octal warning, constant-condition error"},
      {{"error"},
       "octal error, uncovered error, constant-condition error, merged note, "
       "constant-condition error"},
      {{"error=merged", "error=octal"},
       "octal error, uncovered error, constant-condition warning, merged error, "
       "constant-condition error"},
      {{"no-octal", "error=octal"},
       "octal error, uncovered error, constant-condition warning, merged note, "
       "constant-condition error"},
      // This is the code no-value.
      {{"no-octal", "no-value"},
       "uncovered error, constant-condition warning, merged note, constant-condition error"},
      {{"no-octal", "no-no-value"},
       "uncovered error, constant-condition warning, merged note, constant-condition error"},
  };
  for (const auto& c : cases) EXPECT_EQ(levelsAfter(c.choices), c.levels);
}

TEST(LevelChoices, HoldForAllPartsOfAReport) {
  LevelChoices levels;
  EXPECT_EQ(levels.take("no-octal"), "");
  CheckReport report;
  report.allowed = {{"octal", {}, {}}, {"merged", {}, {}}};
  report.undecided = {{"never-true", {}, {}}, {"octal", {}, {}}};
  levels.apply(report);
  ASSERT_EQ(report.allowed.size(), 1U);
  EXPECT_EQ(report.allowed[0].code, "merged");
  ASSERT_EQ(report.undecided.size(), 1U);
  EXPECT_EQ(report.undecided[0].code, "never-true");
}

TEST(LevelChoices, RefusesUnknownCodesAndWhatCannotBeSilenced) {
  const struct {
    const char* choice;
    const char* wrong;
  } cases[] = {
      {"octl", "there is no code \"octl\"; did you mean \"octal\"?"},
      {"no-octl", "there is no code \"octl\"; did you mean \"octal\"?"},
      {"error=octl", "there is no code \"octl\"; did you mean \"octal\"?"},
      {"error=", "there is no code \"\"; --list-codes lists them"},
      {"", "there is no code \"\"; --list-codes lists them"},
      {"everything", "there is no code \"everything\"; --list-codes lists them"},
      {"no-syntax", "the daemon refuses a text with \"syntax\", so it cannot be switched off"},
      {"no-cycle", "the daemon refuses a text with \"cycle\", so it cannot be switched off"},
  };
  for (const auto& c : cases) {
    LevelChoices levels;
    EXPECT_EQ(levels.take(c.choice), c.wrong) << c.choice;
  }
}

}  // namespace
