#include "check/checker.h"

#include <gtest/gtest.h>

#include <string>

#include "base/system_log.h"
#include "vid_std.h"

namespace {

std::vector<std::string> codesOf(const std::vector<Finding>& findings) {
  std::vector<std::string> codes;
  codes.reserve(findings.size());
  for (const Finding& finding : findings) codes.emplace_back(finding.code);
  return codes;
}

std::string textOfManyIndices() {
  std::string text = "limit rw { rangeValid { 0..3 } default { 0 } }\n";
  std::string names;
  for (int i = 0; i < 30; ++i) {
    const std::string name = "i" + std::to_string(i);
    text += name + " index { rangeValid { 0..1 } }\n";
    names += (names.empty() ? "" : ", ") + name;
  }
  return text + "gain rw { index { " + names + " } rangeValid { 0..(limit) } default { 0 } }\n";
}

// What a device may have in more instances than anybody counts.
TEST(Checker, EndsOnTextsOfManyInstances) {
  initVidStdTables();
  const LogRedirection silence([](const std::string&) {});
  constexpr const char* LIMIT = "limit rw { rangeValid { 0..3 } default { 0 } }\n";
  const std::string follows =
      "gain rw { index { place } rangeValid { 0..(limit - 1) } default { 0 } }\n";
  struct Case {
    const char* name;
    std::string text;
    std::vector<std::string> codes;
    std::vector<std::string> undecided;
  };
  const Case cases[] = {
      {"every number",
       LIMIT + ("place index { rangeValid { -2147483648..2147483647 } }\n" + follows),
       {"over-budget", "empty-range"},
       {}},
      {"nearly as many as a commit takes",
       LIMIT + ("place index { rangeValid { 1..500000 } }\n" + follows),
       {"empty-range"},
       {"unsettled"}},
      {"many indices", textOfManyIndices(), {"over-budget"}, {}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    const SourceText source("text", c.text);
    const CheckReport report = checkText(source, {});
    EXPECT_EQ(codesOf(report.findings), c.codes);
    EXPECT_EQ(codesOf(report.undecided), c.undecided);
  }
}

// A condition whose formula would be larger than what can be solved.
TEST(Checker, EndsOnALongCondition) {
  constexpr int TERMS = 8000;
  std::string text = "mode rw { rangeValid { 0.." + std::to_string(TERMS) + " } default { 0 } }\n" +
                     "gain rw { rangeValid { 0..9 } default { 0 } ctrlRO (mode == 0\n";
  for (int i = 1; i < TERMS; ++i) text += "|| mode == " + std::to_string(i) + "\n";
  const SourceText source("text", text + ") }\n");
  const CheckReport report = checkText(source, {});
  EXPECT_EQ(codesOf(report.findings), std::vector<std::string>());
  EXPECT_EQ(codesOf(report.undecided), std::vector<std::string>({"always-true"}));
}

}  // namespace
