// What requests cost, exactly: the counts are the same on every machine and in every build.
#include <gtest/gtest.h>

#include "base/system_log.h"
#include "base/value_limit.h"
#include "base/work.h"
#include "database/commit.h"
#include "database/dependencies.h"
#include "database/index_query.h"
#include "database/range_query.h"
#include "tests/support/database.h"

namespace {

constexpr uint64_t UNLIMITED = UINT64_MAX;

constexpr std::string_view TEXT = R"(
in index { rangeValid { 1..3 } ctrlValid (mode != 9) }
mode rw { }
plain rw { }
width rw { rangeValid { 0..(mode * 2) } default { (mode + 1) } }
crop rw { index { in } rangeValid { 0..(width) } }
long rw { ctrlValid (text $ part) }
text rw { }
part rw { }
named index { rangeValid { "ab", "c", 4 } rangeValid (only != 1) { "ab", "c", 4 } }
only rw { }
byName rw { index { named } }
)";

class WorkCounts : public testing::Test {
 protected:
  void SetUp() override { define(database_, TEXT); }

  // Stages the values and commits them; what that costs together.
  uint64_t commitOf(const std::vector<std::pair<std::string, std::string>>& values,
                    int result = COMMIT_DONE) {
    Work::begin(UNLIMITED);
    Transaction transaction(database_);
    for (const auto& [name, value] : values) EXPECT_EQ(transaction.set(name, value, false), 0);
    std::vector<Change> changes;
    EXPECT_EQ(commit(transaction, changes), result);
    return Work::done();
  }

  Database database_;
};

TEST_F(WorkCounts, OfACommitFollowFromItsPlanAndItsTexts) {
  struct Case {
    std::vector<std::pair<std::string, std::string>> values;
    uint64_t units;
  };
  const Case cases[] = {
      {{}, 0},
      // Staged (4 for each byte of name and value), put in order, evaluated.
      {{{"plain", "5"}}, 324 + 25 + 304},
      // And "width" and three instances of "crop", whose index is worked out once.
      {{{"mode", "5"}}, 320 + 25 + 304 + 405 + 3 * 601 + 31},
      {{{"mode", "5"}}, 320 + 25 + 304 + 405 + 3 * 601 + 31},  // a second time the same
      // And "long", which looks for the one in the other.
      {{{"text", std::string(1000, 'x')}, {"part", "y"}},
       4316 + 320 + 100 + 4300 + 304 + 351 + 4000},
      // And three instances of "byName", whose index is worked out once and asked for each.
      {{{"only", "5"}}, 320 + 25 + 304 + 3 * (508 + 10) + 41},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.values.empty() ? "nothing" : c.values.front().first);
    EXPECT_EQ(commitOf(c.values), c.units);
  }
}

// Each instance behind a refused one was planned, though it is not evaluated.
TEST_F(WorkCounts, OfARefusedCommitAreAlsoOfWhatItLeavesUnwalked) {
  uint64_t logged = 0;
  const LogRedirection log(
      [&](const std::string& line) { logged += WORK_PER_LOG_LINE + line.size(); });
  static_cast<void>(commitOf({{"mode", "9"}}));  // "in" has no values
  const auto unlogged = [&](const std::vector<std::pair<std::string, std::string>>& values) {
    logged = 0;
    const uint64_t units = commitOf(values, COMMIT_INVALID_INDEX);
    return units - logged;
  };
  EXPECT_EQ(unlogged({{"crop[1]", "7"}}), 332 + 25 + 605 + 31);
  EXPECT_EQ(unlogged({{"crop[1]", "7"}, {"crop[2]", "8"}, {"crop[3]", "9"}}),
            3 * 332 + 2 * 3 * 25 + 605 + 31 + 2 * 300);
}

TEST_F(WorkCounts, OfQueriesFollowFromWhatTheyWalkOver) {
  const StagedValues staged;
  BoundsParm bounds;
  Work::begin(UNLIMITED);
  EXPECT_EQ(queryRange(database_, staged, "crop[1]", bounds), RANGE_FOUND);
  const uint64_t range = Work::done();
  Work::begin(UNLIMITED);
  std::set<std::string> names;
  EXPECT_EQ(dependencies(database_, "crop[1]", true, names), DEPENDENCIES_FOUND);
  const uint64_t depending = Work::done();
  Work::begin(UNLIMITED);
  std::vector<std::string> texts;
  Spans spans;
  EXPECT_EQ(indexRange(database_, staged, "in", texts, spans), INDEX_RANGE_FOUND);
  const uint64_t index = Work::done();
  Work::begin(UNLIMITED);
  EXPECT_EQ(indexRange(database_, staged, "named", texts, spans), INDEX_RANGE_FOUND);
  const uint64_t indexOfTexts = Work::done();
  // Three references and two names; evaluated in the plan and by itself, and the range taken; what
  // applies, and one run.
  EXPECT_EQ(depending, 3 * uint64_t{300} + 20 + 16);
  EXPECT_EQ(range, depending + 2 * uint64_t{601} + 31 + 81);
  EXPECT_EQ(index, 3 * uint64_t{31} + 50);
  // What applies; one run and two texts, each with the one conditional range; the texts' bytes.
  EXPECT_EQ(indexOfTexts, 3 * uint64_t{41} + 3 * uint64_t{50 + 10} + uint64_t{4} * 3);
}

TEST_F(WorkCounts, OfAQueryAreOfTheParameterWhoseNamesItReads) {
  std::set<std::string> names;
  Work::begin(700);
  EXPECT_THROW(static_cast<void>(dependencies(database_, "crop[1]", true, names)), WorkExceeded);
  EXPECT_EQ(Work::exceededText(), R"(work: ERROR "width": 936 units of work, 700 allowed)");
  Work::begin(UNLIMITED);
}

TEST_F(WorkCounts, OfALineInTheLogAreOfItsBytesAndAFixedPart) {
  const LogRedirection silence([](const std::string&) {});
  Work::begin(UNLIMITED);
  logError("12345");
  EXPECT_EQ(Work::done(), WORK_PER_LOG_LINE + 5);
}

// A commit whose budget is smaller than its plan changes nothing; one that runs out of it on the
// way leaves what it has stored, and tells of exactly that.
TEST_F(WorkCounts, OfACommitAreHeldAgainstTheBudgetBeforeAnythingIsStored) {
  std::vector<std::string> log;
  const LogRedirection redirection([&](const std::string& line) { log.push_back(line); });
  Transaction transaction(database_);
  EXPECT_EQ(transaction.set("mode", "5", false), STAGE_DONE);
  Work::begin(1000);
  std::vector<Change> changes;
  EXPECT_EQ(commit(transaction, changes), COMMIT_TOO_LARGE);
  EXPECT_TRUE(changes.empty());
  EXPECT_TRUE(transaction.staged().empty());
  Work::begin(UNLIMITED);
  EXPECT_EQ(transaction.find("mode")->size(), 0U);
  EXPECT_EQ(
      log, (std::vector<std::string>{R"(commit: ERROR "mode": 2564 units of work, 1000 allowed)"}));
}

TEST_F(WorkCounts, OfTextsEndACommitWhereTheBudgetIsPassed) {
  const std::string longest(MAX_VALUE_BYTES, 'x');
  Work::begin(UNLIMITED);
  Transaction transaction(database_);
  EXPECT_EQ(transaction.set("text", longest, false), STAGE_DONE);
  Work::begin(5 * MAX_VALUE_BYTES);
  std::vector<Change> changes;
  EXPECT_THROW(static_cast<void>(commit(transaction, changes)), WorkExceeded);
  EXPECT_EQ(Work::exceededText(), R"(work: ERROR "long": 8389284 units of work, 5242880 allowed)");
  // "text" is stored, then the search for "part" in it is too much.
  ASSERT_EQ(changes.size(), 1U);
  EXPECT_EQ(changes.front().name, "text");
  Work::begin(UNLIMITED);
  EXPECT_EQ(transaction.find("text")->size(), MAX_VALUE_BYTES);
  EXPECT_TRUE(transaction.staged().empty());
}

}  // namespace
