#include "check/proof/replay.h"

#include <gtest/gtest.h>

#include "tests/support/database.h"

namespace {

class Replay : public testing::Test {
 protected:
  Replay() {
    define(database_,
           "top rw { rangeValid { 0..9 } default { 3 } }\n"
           "low rw { rangeValid { 0..(top) } default { 2 } }\n"
           "i index { rangeValid { 1..2 } ctrlValid (top > 1) }\n"
           "far rw { rangeValid { 1..(top) } default { 1 } }\n"
           "each rw { index { i } rangeValid { 1..9 } }\n");
  }

  std::string held(std::string_view name, const IndexTuple& indices = {}) {
    return database_.findParm(name)->parm.committedText(indices);
  }

  Database database_;
};

TEST_F(Replay, KeepsWhatTheDefinitionsKeep) {
  const struct {
    NamedValues witness;
    bool isKept;
  } cases[] = {
      {{{"top", "7"}, {"low", "7"}}, true},
      {{{"top", "4"}, {"low", "7"}}, false},  // becomes 4
      {{{"top", "10"}}, false},
      {{{"top", "2"}, {"each[1]", "3"}}, true},
      {{{"top", "1"}, {"each[1]", "3"}}, false},  // is not there
      {{{"top", "2"}, {"each[7]", "3"}}, false},
  };
  for (const auto& [witness, isKept] : cases) {
    EXPECT_EQ(replay(witness, database_), isKept) << witness.front().second;
    EXPECT_EQ(held("top"), "");
  }
}

TEST_F(Replay, LeavesAloneWhatIsNotPartOfIt) {
  const std::vector<std::string> names = {"top", "low"};
  const std::vector<ParmEntry*> dependents = database_.findParm("top")->dependents;
  {
    ConfinedCommits commits(names, database_);
    EXPECT_TRUE(commits.moveFromDefaults({{"low", "1"}, {"top", "0"}}));
    EXPECT_EQ(held("top"), "0");
    EXPECT_EQ(held("low"), "0");
    EXPECT_EQ(held("far"), "");
    EXPECT_EQ(held("each", {"1"}), "");
    EXPECT_TRUE(commits.moveFromDefaults({}));
    EXPECT_EQ(held("top"), "3");
    EXPECT_EQ(held("low"), "2");
  }
  EXPECT_EQ(held("low"), "");
  EXPECT_EQ(database_.findParm("top")->dependents, dependents);
  EXPECT_EQ(database_.findIndexEntry("i")->dependents.size(), 1U);
}

}  // namespace
