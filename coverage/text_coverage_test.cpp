#include "coverage/text_coverage.h"

#include <gtest/gtest.h>

#include "coverage/statement_numbers.h"
#include "database/database.h"

namespace {

using Numbers = std::vector<uint32_t>;

// "gain rangeValid 3 if": the definition, the keyword, the line, and whether there is a condition.
std::vector<std::string> statementsOf(const TextCoverage& coverage) {
  std::vector<std::string> lines;
  for (const StatementCoverage& statement : coverage.statements()) {
    lines.push_back(coverage.definitions()[statement.definition].name + " " +
                    std::string(statement.keyword) + " " + std::to_string(statement.line) +
                    (statement.hasCondition ? " if" : ""));
  }
  return lines;
}

TEST(TextCoverage, KnowsEachStatement) {
  const TextCoverage coverage(R"(gain rw {
  default { 1 } rangeValid (mode) { 1 } rangeValid () { 2 }
  ctrlRO (mode) ctrlValid (mode) index { i }
  rangeDoc { 1 } valueChange { "a" -> 1 }
}
i index { rangeValid { 1 } }
gain rw { default (mode) { 2 } }
mode rw { rangeValid { 0..1 } oops )");
  EXPECT_EQ(statementsOf(coverage),
            (std::vector<std::string>{"gain index 3", "gain rangeValid 2 if", "gain rangeValid 2",
                                      "gain rangeDoc 4", "gain ctrlRO 3 if", "gain ctrlValid 3 if",
                                      "gain default 2", "gain default 7 if", "gain valueChange 4",
                                      "i rangeValid 6", "mode rangeValid 8"}));
  ASSERT_EQ(coverage.definitions().size(), 3U);
  EXPECT_EQ(coverage.definitions()[0].line, 1U);
  EXPECT_EQ(coverage.definitions()[1].line, 6U);
}

TEST(TextCoverage, CountsWhatCanBeReached) {
  TextCoverage coverage("a rw { rangeValid (b == 1) { 1 } default { 1 } } b rw { }");
  EXPECT_EQ(coverage.totals().percent(), 0);
  StatementCoverage& range = coverage.statements()[0];
  range.chosen = range.whenTrue = 3;
  coverage.definitions()[0].judged = 1;
  CoverageTotals totals = coverage.totals();
  EXPECT_EQ(totals.statements.reached, 1U);
  EXPECT_EQ(totals.statements.all, 2U);
  EXPECT_EQ(totals.outcomes.reached, 1U);
  EXPECT_EQ(totals.outcomes.all, 2U);
  EXPECT_EQ(totals.definitions.reached, 1U);
  EXPECT_EQ(totals.definitions.all, 2U);
  EXPECT_EQ(totals.percent(), 50);
  EXPECT_FALSE(totals.isFull());
  range.isNeverFalse = true;
  coverage.statements()[1].isNeverChosen = true;
  coverage.definitions()[1].judged = 1;
  EXPECT_TRUE(coverage.totals().isFull());
  EXPECT_EQ(TextCoverage("").totals().percent(), 100);
}

Numbers numbersIn(const StatementLines::List& places) {
  Numbers numbers;
  for (const StatementPlace& place : places) numbers.push_back(place.line);
  return numbers;
}

// The numbers tell statements of one line apart, and a constant may leave some out.
TEST(StatementNumbers, AreThoseOfTheTextInAVariant) {
  const TextCoverage coverage(
      "p rw { rangeValid (M == 1) { 1 } rangeValid { 2 } rangeValid (q) { 3 } default { 4 } }"
      "q ro { ctrlRO (p[1]) }");
  const struct {
    const char* value;
    Numbers inBase;
  } cases[] = {{"0", {2}}, {"1", {1, 2}}};
  for (const auto& c : cases) {
    Database constants;
    ASSERT_EQ(constants.defineConstant("M", c.value), 0);
    const StatementNumbers numbers = statementNumbers(coverage, constants);
    const StatementLines& p = numbers.at("p");
    EXPECT_EQ(numbersIn(p.inBase), c.inBase);
    EXPECT_EQ(numbersIn(p.ranges), Numbers{3});
    EXPECT_EQ(p.fallback.line, 4U);
    EXPECT_EQ(numbersIn(numbers.at("q").readOnly), (Numbers{0, 5}));
  }
}

}  // namespace
