#include "explore/proved.h"

#include <gtest/gtest.h>

#include "coverage/tracefile.h"
#include "vid_std.h"

namespace {

using Texts = std::vector<std::string>;

// "3 chosen true": the line of a statement, and what of it cannot be.
Texts leftOut(const std::string& text, const ConstantChoices& choices, size_t& count) {
  initVidStdTables();
  TextCoverage coverage(text);
  count = leaveOutProved(text, choices, 60, coverage);
  Texts lines;
  for (const StatementCoverage& statement : coverage.statements()) {
    std::string line;
    if (statement.isNeverChosen) line += " chosen";
    if (statement.isNeverTrue) line += " true";
    if (statement.isNeverFalse) line += " false";
    if (!line.empty()) lines.push_back(std::to_string(statement.line) + line);
  }
  return lines;
}

TEST(Proved, IsLeftOut) {
  size_t count = 0;
  EXPECT_EQ(leftOut(R"(mode rw { rangeValid { 0..3 } }
gain rw {
  rangeValid (mode < 9) { 0..5 }
  rangeValid (mode == 1) { 0..9 } rangeValid (mode == 7) { 7 }
  ctrlRO (mode == 8)
  default (mode < 2) { 1 }
  default (mode == 1) { 2 }
  default { 3 }
}
gain rw { default (mode == 6) { 4 } })",
                    {}, count),
            (Texts{"3 false", "4 chosen true", "5 true", "7 chosen", "10 chosen true"}));
  EXPECT_EQ(count, 7U);
}

// What one variant cannot reach, another may.
TEST(Proved, IsOfAllVariants) {
  size_t count = 0;
  const char* const text = "a rw { rangeValid { 0..(N) } } b rw { default (a == 5) { 1 } }";
  EXPECT_EQ(leftOut(text, {{"N", {"3"}}}, count), Texts{"1 chosen true"});
  EXPECT_EQ(count, 2U);
  EXPECT_EQ(leftOut(text, {{"N", {"3", "7"}}}, count), Texts{});
  EXPECT_EQ(count, 0U);
}

}  // namespace
