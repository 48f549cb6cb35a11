#include "database/trial.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>

#include "base/system_log.h"
#include "tests/support/random_texts.h"

namespace {

using Tried = std::vector<TriedChange>;

constexpr std::string_view TEXT = R"(mode rw { rangeValid { "slow", "fast" } }
rate rw { rangeValid (mode == "slow") { 1..10 } rangeValid (mode == "fast") { 1..100 } }
state ro { rangeValid { 0..9 } default { 7 } }
hidden rostrict { rangeValid { 0..9 } }
order wo { rangeValid { 0..9 } }
)";

class TrialTest : public testing::Test {
 protected:
  TrialTest() { define(database_, TEXT); }

  void commitValue(const char* name, const char* value) {
    ASSERT_EQ(transaction_.set(name, value, true), STAGE_DONE);
    std::vector<std::string> names;
    ASSERT_EQ(commitNames(transaction_, names), COMMIT_DONE);
  }

  Database database_;
  Transaction transaction_{database_};
};

TEST_F(TrialTest, TellsWhatFollows) {
  commitValue("mode", "fast");
  commitValue("rate", "50");
  EXPECT_EQ(transaction_.set("mode", "slow", false), STAGE_DONE);
  Tried changes;
  EXPECT_EQ(tryCommit(transaction_, changes), COMMIT_DONE);
  EXPECT_EQ(changes, (Tried{{"mode", "slow"}, {"rate", "10"}}));
}

TEST_F(TrialTest, ChangesNothing) {
  commitValue("rate", "5");
  EXPECT_EQ(transaction_.set("rate", "9", false), STAGE_DONE);
  EXPECT_EQ(transaction_.reset("state", true), STAGE_DONE);
  Tried first;
  EXPECT_EQ(tryCommit(transaction_, first), COMMIT_DONE);
  EXPECT_EQ(*transaction_.find("rate"), "9");
  EXPECT_EQ(*Transaction(database_).find("rate"), "5");
  EXPECT_EQ(*Transaction(database_).find("state"), "");
  Tried second;
  EXPECT_EQ(tryCommit(transaction_, second), COMMIT_DONE);
  EXPECT_EQ(first, second);
}

TEST_F(TrialTest, TellsWhatIsReportedAlone) {
  commitValue("order", "3");
  commitValue("rate", "5");
  const struct {
    const char* name;
    const char* value;
    Tried changes;
  } cases[] = {
      {"rate", "5", {}},                 // as before
      {"order", "3", {{"order", "3"}}},  // each write is told
      {"hidden", "1", {}},               // never told
      {"state", "1", {}},                // not writable
      {"state", "reset", {{"state", "7"}}},
  };
  for (const auto& c : cases) {
    Transaction transaction(database_);
    if (std::string(c.value) == "reset") {
      EXPECT_EQ(transaction.reset(c.name, true), STAGE_DONE);
    } else {
      EXPECT_EQ(transaction.set(c.name, c.value, false), STAGE_DONE);
    }
    Tried changes;
    EXPECT_EQ(tryCommit(transaction, changes), COMMIT_DONE) << c.name;
    EXPECT_EQ(changes, c.changes) << c.name;
  }
}

TEST_F(TrialTest, WritesNothingToTheLog) {
  Database database;
  define(database, "i index { rangeValid { 0..1 } }\na rw { index { i } }");
  std::vector<std::string> log;
  const LogRedirection redirection([&](const std::string& line) { log.push_back(line); });
  Transaction transaction(database);
  EXPECT_EQ(transaction.set("a[5]", "1", false), STAGE_DONE);
  Tried changes;
  EXPECT_EQ(tryCommit(transaction, changes), COMMIT_INVALID_INDEX);
  EXPECT_TRUE(log.empty());
}

// What all instances of a random text hold.
std::map<std::string, std::string> allValues(Database& database) {
  std::map<std::string, std::string> values;
  for (const char name : std::string("abcd")) {
    for (const std::string suffix :
         {"", "[0]", "[1]", "[a]", "[0][0]", "[0][a]", "[1][0]", "[1][a]"}) {
      const std::string full = name + suffix;
      static_cast<void>(Transaction(database).get(full, values[full]));
    }
  }
  return values;
}

void stageAtRandom(RandomTexts& random, Transaction& transaction) {
  const Texts suffixes = {"", "", "[0]", "[1]", "[a]", "[0][a]", "[1][0]", "[7]"};
  for (size_t count = 1 + random.below(4); count > 0; --count) {
    const std::string name = random.oneOf({"a", "b", "c", "d"}) + random.oneOf(suffixes);
    const bool force = random.below(2) == 0;
    if (random.below(3) == 0) {
      static_cast<void>(transaction.reset(name, force));
    } else {
      static_cast<void>(transaction.set(name, random.oneOf(VALUES), force));
    }
  }
}

// Tries what is staged, commits it, and compares: the result, what is reported, and that nothing
// else has moved. Returns the result.
int compareTrial(Database& database, Transaction& transaction) {
  const auto before = allValues(database);
  Tried tried;
  const int triedResult = tryCommit(transaction, tried);
  EXPECT_EQ(allValues(database), before);
  std::vector<Change> changes;
  const int result = commit(transaction, changes);
  Tried done;
  for (const Change& change : changes) done.push_back({change.name, change.held->value.text()});
  EXPECT_EQ(triedResult, result);
  EXPECT_EQ(tried, done);
  return result;
}

TEST(RandomTrials, TellWhatTheirCommitDoes) {
  const LogRedirection silence([](const std::string& /*line*/) {});
  size_t refused = 0;
  size_t done = 0;
  for (uint32_t seed = 0; seed < 6000; ++seed) {
    RandomTexts random(seed);
    const std::string text = random.text();
    Database database;
    if (defineOrRefuse(database, text) != 0) continue;
    SCOPED_TRACE(text);
    for (int round = 0; round < 6; ++round) {
      Transaction transaction(database);
      stageAtRandom(random, transaction);
      ++(compareTrial(database, transaction) == COMMIT_DONE ? done : refused);
    }
    if (testing::Test::HasFailure()) return;
  }
  EXPECT_GT(done, 1000U);
  EXPECT_GT(refused, 1000U);
}

}  // namespace
