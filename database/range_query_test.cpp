#include "database/range_query.h"

#include <gtest/gtest.h>

#include <random>

#include "base/system_log.h"
#include "database/commit.h"
#include "database/transaction.h"
#include "tests/support/database.h"

namespace {

using Texts = std::vector<std::string>;

class RangeQueryTest : public testing::Test {
 protected:
  RangeQueryTest() : redirection_([this](const std::string& line) { log_.push_back(line); }) {}

  void text(std::string_view definitions, const Constants& constants = {}) {
    define(database_, definitions, constants);
  }

  void stage(const std::string& name, const std::string& value, bool force = false) {
    EXPECT_EQ(transaction_.set(name, value, force), STAGE_DONE) << name;
  }

  void commitAll() {
    Texts changed;
    EXPECT_EQ(commitNames(transaction_, changed), COMMIT_DONE);
  }

  // The range as a client would write it, or the code.
  std::string range(std::string_view name) {
    BoundsParm bounds;
    const int code = queryRange(database_, transaction_.staged(), name, bounds);
    if (code != RANGE_FOUND) return "code " + std::to_string(code);
    std::string out;
    for (const Span& span : bounds.integers().spans()) {
      out += std::to_string(span.first) + ".." + std::to_string(span.second) + " ";
    }
    for (const std::string& allowed : bounds.strings().texts()) out += allowed + " ";
    return out;
  }

  Database database_;
  Transaction transaction_{database_};
  Texts log_;
  LogRedirection redirection_;
};

TEST_F(RangeQueryTest, AnswersWithTheFirstRangeThatApplies) {
  text(R"(
chan index { rangeValid { 1..3 } }
mode rw { }
limit rw { }
plain rw { rangeValid { 5, "x", 0..2, 3 } }
free rw { }
switched rw { rangeValid { 0..99 } rangeValid (mode == 1) { 0..9 } rangeValid (mode >= 1) { 50 } }
shown rw { rangeValid { 0..99 } rangeDoc { 1..2 } rangeDoc (mode == 1) { "only" } }
computed rw { rangeValid { 0..(limit), "off" } rangeValid { 100 } }
byIndex rw { index { chan } rangeValid { 0..(chan * 10) } }
)");
  struct Case {
    std::string mode;
    const char* name;
    std::string range;
  };
  const Case cases[] = {
      {"0", "plain", "0..3 5..5 x "},   {"0", "free", ""},
      {"0", "switched", "0..99 "},      {"1", "switched", "0..9 "},
      {"2", "switched", "50..50 "},     {"0", "shown", "1..2 "},
      {"1", "shown", "only "},          {"0", "computed", "0..7 100..100 off "},
      {"0", "byIndex[3]", "0..30 "},    {"0", "byIndex", "code 1"},
      {"0", "byIndex[4]", "code 1"},    {"0", "none", "code 1"},
      {"0", "chan", "code 1"},          {"0", "plain[1]", "code 1"},
      {"0", "plain[1", "0..3 5..5 x "},  // no bracket is closed
  };
  stage("limit", "7");
  stage("switched", "1");  // while it is empty, its spans refuse it
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.name) + " in mode " + c.mode);
    stage("mode", c.mode);
    EXPECT_EQ(range(c.name), c.range);
  }
}

TEST_F(RangeQueryTest, SaysWhyALimitHasNoValue) {
  text(R"(
low rw { rangeValid { (sw::this)..9 } }
single rw { rangeValid { (sw::this) } }
high rw { rangeValid { 0..(sw::this) } }
text rw { rangeValid { (word)..9 } }
endless rw { rangeValid { 0..(word) } }
upside rw { rangeValid { 5..(count) } }
word rw { }
count rw { }
)");
  stage("word", "abc");
  stage("count", "4");
  struct Case {
    const char* name;
    std::string range;
  };
  const Case cases[] = {
      {"low", "code -2"},  {"single", "code -2"},  {"high", "code -4"},
      {"text", "code -3"}, {"endless", "code -4"}, {"upside", "code -5"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(range(c.name), c.range);
  }
}

TEST_F(RangeQueryTest, FollowsWhatIsStagedThroughEveryLevel) {
  text(R"(
mode rw { rangeValid { "sd", "hd" } }
width rw { rangeValid (mode == "sd") { 720 } rangeValid (mode == "hd") { 1920 }
           rangeValid { 720, 1920 } }
crop rw { rangeValid { 0..(width - 1 - MARGIN) } }
)",
       {{"MARGIN", "19"}});
  stage("mode", "sd");
  stage("width", "720");
  commitAll();
  EXPECT_EQ(range("crop"), "0..700 ");
  stage("mode", "hd");  // width will follow, and crop's range with it
  EXPECT_EQ(range("crop"), "0..1900 ");
  EXPECT_EQ(range("width"), "1920..1920 ");
  EXPECT_EQ(transaction_.staged().inNameOrder().size(), 1U);
  Transaction other(database_);
  BoundsParm bounds;
  EXPECT_EQ(queryRange(database_, other.staged(), "crop", bounds), RANGE_FOUND);
  EXPECT_EQ(bounds.integers().spans(), (Spans{{0, 700}}));
}

TEST_F(RangeQueryTest, ReadsPartlyQualifiedNamesAndLetsAllThatIsStagedBeSeen) {
  text(R"(
in index { rangeValid { 0..1 } }
out index { rangeValid { 0..1 } }
both rw { index { in, out } }
perIn rw { index { in } rangeValid { 0..(both + 5) } }
fixed rw { rangeValid { 0..(both[1][0]) } }
)");
  stage("both[1][0]", "3");
  EXPECT_EQ(range("perIn[1]"), "0..5 ");  // both[1] is no instance, so it has no value
  EXPECT_EQ(range("fixed"), "0..3 ");
}

// Where the query starts decides whether `mid`, which was never committed, is seen corrected.
TEST_F(RangeQueryTest, StartsAtTheLevelOfAStagedNameThatLacksIndexValues) {
  text(R"(
chan index { rangeValid { 0..1 } }
grid rw { index { chan } }
low rw { }
mid rw { ctrlRO (low == 1) rangeValid { 5..9 } }
target rw { rangeValid { 0..(mid + grid) } }
)");
  EXPECT_EQ(range("target"), "0..0 ");
  stage("grid[1]", "2");  // no part of what target depends on
  EXPECT_EQ(range("target"), "0..0 ");
  stage("grid", "2");  // no instance, but the name that target refers to
  EXPECT_EQ(range("target"), "0..7 ");
}

TEST_F(RangeQueryTest, RefusesAnInstanceThatDoesNotExistNow) {
  text(R"(
on rw { }
chan index { rangeValid { 1..2 } ctrlValid (on == 1) }
gain rw { index { chan } rangeValid { 0..9 } }
sum rw { rangeValid { 0..(gain[1] + 5) } }
)");
  EXPECT_EQ(range("gain[1]"), "code -6");
  EXPECT_EQ(log_, (Texts{"set: ERROR \"gain\": Invalid index[chan]", "Var list begin",
                         "   \"on\"=\"\"", "Var list end"}));
  // On the way to another parameter it is passed over, unless the client staged it.
  log_.clear();
  stage("on", "0");
  EXPECT_EQ(range("sum"), "0..5 ");
  EXPECT_EQ(log_, Texts{});
  stage("gain[1]", "3");
  EXPECT_EQ(range("sum"), "code -6");
  stage("on", "1");
  EXPECT_EQ(range("sum"), "0..8 ");
  EXPECT_EQ(range("gain[1]"), "0..9 ");
}

TEST_F(RangeQueryTest, AnswersForWhatCannotBeWritten) {
  text(R"(
off rw { ctrlValid (mode == 1) rangeValid { 0..3 } }
status ro { rangeValid { 0..4 } }
never rw { ctrlValid (FITTED == 1) rangeValid { 0..5 } }
button wo { rangeValid { 1 } }
mode rw { }
)",
       {{"FITTED", "0"}});
  EXPECT_EQ(range("off"), "0..3 ");
  EXPECT_EQ(range("status"), "0..4 ");
  EXPECT_EQ(range("never"), "0..5 ");
  EXPECT_EQ(range("button"), "1..1 ");
}

// A small device at random: parameters whose ranges, conditions and read-only conditions refer to
// others, with an index.
std::string randomText(std::mt19937& random) {
  std::string text = "i index { rangeValid { 0..2 } rangeValid (p0 > 3) { 0..1 } }\n";
  for (int p = 0; p < 6; ++p) {
    const auto earlier = [&] { return "p" + std::to_string(random() % static_cast<uint32_t>(p)); };
    text += "p" + std::to_string(p) + " rw {";
    if (p == 0) {
      text += " rangeValid { 0..9 } }\n";
      continue;
    }
    text += random() % 3 == 0 ? " index { i }" : "";
    text += random() % 2 == 0 ? " rangeValid { 0..(" + earlier() + ") }" : " rangeValid { 2..7 }";
    text += random() % 3 == 0 ? " ctrlRO (" + earlier() + " == 5)" : "";
    text += random() % 3 == 0 ? " rangeValid (" + earlier() + " > 4) { 3..4 }" : "";
    text += " }\n";
  }
  return text;
}

std::string stateOf(Database& database, const Transaction& transaction) {
  std::string state;
  for (int p = 0; p < 6; ++p) {
    const ParmEntry& parm = *database.findParm("p" + std::to_string(p));
    for (const IndexTuple& indices : {IndexTuple{}, {"0"}, {"1"}, {"2"}}) {
      const StagedEntry* staged = transaction.staged().find(parm, indices);
      state += parm.parm.committedText(indices) + "/" +
               (staged == nullptr ? "-" : staged->value.text() + (staged->force ? "s" : "c")) + " ";
    }
  }
  return state;
}

TEST(RangeQueries, ChangeNothing) {
  std::mt19937 random(4711);
  const LogRedirection silence([](const std::string&) {});
  for (int round = 0; round < 300; ++round) {
    Database database;
    const std::string text = randomText(random);
    SCOPED_TRACE(text);
    ASSERT_NO_FATAL_FAILURE(define(database, text));
    Transaction transaction(database);
    for (int step = 0; step < 20; ++step) {
      std::string name = "p" + std::to_string(random() % 6);
      if (!database.findParm(name)->parm.indices().empty()) {
        name += "[" + std::to_string(random() % 3) + "]";
      }
      static_cast<void>(transaction.set(name, std::to_string(random() % 12), random() % 2 == 0));
      if (random() % 5 == 0) {
        Texts changed;
        static_cast<void>(commitNames(transaction, changed));
      }
      const std::string before = stateOf(database, transaction);
      BoundsParm bounds;
      const int result = queryRange(database, transaction.staged(), name, bounds);
      ASSERT_EQ(stateOf(database, transaction), before) << name;
      // Whoever looks at the situation finds the same range there.
      BoundsParm visited;
      int taken = RANGE_FOUND;
      const int visit = visitQueried(database, transaction.staged(), name,
                                     [&](const ParmEntry& parm, const Situation& situation) {
                                       taken = parm.parm.range(visited, situation);
                                     });
      ASSERT_EQ(taken != RANGE_FOUND ? taken : visit, result) << name;
      ASSERT_EQ(visited.integers().spans(), bounds.integers().spans()) << name;
      ASSERT_EQ(visited.strings().texts(), bounds.strings().texts()) << name;
      ASSERT_EQ(stateOf(database, transaction), before) << name;
    }
  }
}

}  // namespace
