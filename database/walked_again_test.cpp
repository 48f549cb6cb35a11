// Levels that are walked again, because a rule still fails after its corrections. The rules are
// made by hand: no definition text leads to such a one.
#include <gtest/gtest.h>

#include "base/system_log.h"
#include "database/commit.h"
#include "database/range_query.h"
#include "database/transaction.h"
#include "database/trial.h"
#include "tests/support/database.h"
#include "tests/support/definitions.h"

namespace {

using Texts = std::vector<std::string>;

// While b is 1, the two rules pull a to and fro; otherwise the first one alone holds. Each refers
// to the other, so both are on one level, and a comes first.
const ParmText PULLED = {
    .common = {.name = "a"},
    .rules = {{"1", "sw::this >= 5", "5"}, {"b == 1", "sw::this <= 3", "3"}},
};

class WalkedAgainTest : public testing::Test {
 protected:
  WalkedAgainTest() : redirection_([this](const std::string& line) { log_.push_back(line); }) {}

  void defineByHand(const std::vector<ParmText>& parms) {
    for (const ParmText& parm : parms) {
      ASSERT_EQ(database_.registerParm(std::unique_ptr<ParmDef>(new ParmDef(makeParm(parm)))), 0);
    }
    std::string name;
    ASSERT_EQ(database_.finish(name), 0) << name;
  }

  void stage(const std::string& name, const std::string& value) {
    EXPECT_EQ(transaction_.set(name, value, true), STAGE_DONE) << name;
  }

  std::string value(const std::string& name) {
    std::string text;
    EXPECT_EQ(transaction_.get(name, text), 0) << name;
    return text;
  }

  Database database_;
  Transaction transaction_{database_};
  Texts changed_;
  Texts log_;
  LogRedirection redirection_;
};

TEST_F(WalkedAgainTest, ALevelThatSettlesIsDone) {
  // The first walk commits b as 0, and the second finds a's second rule at rest.
  defineByHand({PULLED, {.common = {.name = "b"}, .rules = {{"a != 9", "sw::this == 0", "0"}}}});
  stage("a", "1");
  stage("b", "1");
  std::vector<TriedChange> tried;
  EXPECT_EQ(tryCommit(transaction_, tried), COMMIT_DONE);
  EXPECT_EQ(tried, (std::vector<TriedChange>{{"a", "5"}, {"b", "0"}}));
  EXPECT_EQ(commitNames(transaction_, changed_), COMMIT_DONE);
  EXPECT_EQ(changed_, (Texts{"a", "b"}));
  EXPECT_EQ(value("a"), "5");
  EXPECT_EQ(value("b"), "0");
  EXPECT_EQ(log_, Texts{});
}

TEST_F(WalkedAgainTest, AnotherFailureEndsTheWalks) {
  // b's correction divides by 0.
  defineByHand(
      {PULLED, {.common = {.name = "b"}, .rules = {{"a != 9", "sw::this == 0", "1 / 0"}}}});
  stage("b", "0");
  EXPECT_EQ(commitNames(transaction_, changed_), COMMIT_DONE);
  stage("a", "4");
  stage("b", "1");
  EXPECT_EQ(commitNames(transaction_, changed_), COMMIT_INVALID_VALUE);
  EXPECT_EQ(value("a"), "5");
  EXPECT_EQ(value("b"), "0");
}

TEST_F(WalkedAgainTest, ARangeQuerySettlesInTheSameWay) {
  defineByHand({PULLED,
                {.common = {.name = "b"}, .rules = {{"a != 9", "sw::this == 0", "0"}}},
                {.common = {.name = "above", .ranges = {{"1", {"0..(a)"}}}}}});
  stage("a", "1");
  stage("b", "1");
  BoundsParm range;
  EXPECT_EQ(queryRange(database_, transaction_.staged(), "a", range), RANGE_FOUND);
  EXPECT_EQ(queryRange(database_, transaction_.staged(), "above", range), RANGE_FOUND);
  EXPECT_EQ(range.integers().spans(), (Spans{{0, 5}}));
  EXPECT_EQ(value("a"), "1");
  EXPECT_EQ(value("b"), "1");
}

TEST_F(WalkedAgainTest, ATargetWhoseRuleStillFailsIsRefused) {
  // c, on the same level, ends the walks before a has settled: its correction divides by 0.
  ParmText pulled = PULLED;
  pulled.rules.front().condition = "c != 9";
  defineByHand({pulled,
                {.common = {.name = "b"}, .rules = {{"a != 9", "1", "0"}}},
                {.common = {.name = "c"}, .rules = {{"a != 9", "0", "1 / 0"}}}});
  stage("a", "1");
  stage("b", "1");
  BoundsParm range;
  EXPECT_EQ(queryRange(database_, transaction_.staged(), "a", range), RANGE_REFUSED);
}

}  // namespace
