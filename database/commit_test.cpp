#include "database/commit.h"

#include <gtest/gtest.h>

#include <new>
#include <utility>

#include "base/system_log.h"
#include "tests/support/database.h"

namespace {

using Texts = std::vector<std::string>;

// One thing a client stages. "reset" is a reset.
struct Staged {
  std::string name;
  std::string value;
  bool force = false;
};

class CommitTest : public testing::Test {
 protected:
  CommitTest() : redirection_([this](const std::string& line) { log_.push_back(line); }) {}

  void text(std::string_view definitions, const Constants& constants = {}) {
    define(database_, definitions, constants);
  }

  // Stages and commits; `changed_` and `log_` are then those of this commit.
  int commitOf(const std::vector<Staged>& staged) {
    Transaction transaction(database_);
    for (const Staged& entry : staged) {
      if (entry.value == "reset") {
        EXPECT_EQ(transaction.reset(entry.name, entry.force), STAGE_DONE) << entry.name;
      } else {
        EXPECT_EQ(transaction.set(entry.name, entry.value, entry.force), STAGE_DONE) << entry.name;
      }
    }
    changed_.clear();
    log_.clear();
    const int result = commitNames(transaction, changed_);
    EXPECT_TRUE(transaction.staged().empty());
    return result;
  }

  std::string value(const std::string& name) {
    std::string text = "unknown name";
    static_cast<void>(Transaction(database_).get(name, text));
    return text;
  }

  Database database_;
  Texts changed_;
  Texts log_;
  LogRedirection redirection_;
};

TEST_F(CommitTest, OfTheExampleInTheHeader) {
  text(
      "mode rw { rangeValid { \"slow\", \"fast\" } }\n"
      "rate rw { rangeValid (mode == \"slow\") { 1..10 } rangeValid (mode == \"fast\") { 1..100 } "
      "}\n");
  Transaction transaction(database_);
  EXPECT_EQ(transaction.set("mode", "slow", false), STAGE_DONE);
  EXPECT_EQ(transaction.set("rate", "50", false), STAGE_DONE);
  EXPECT_EQ(*transaction.find("rate"), "50");
  EXPECT_EQ(value("rate"), "");
  std::vector<Change> changes;
  EXPECT_EQ(commit(transaction, changes), COMMIT_DONE);
  ASSERT_EQ(changes.size(), 2U);
  EXPECT_EQ(changes[0].name + "=" + changes[0].held->value.text(), "mode=slow");
  EXPECT_EQ(changes[1].name + "=" + changes[1].held->value.text(), "rate=10");
}

TEST_F(CommitTest, OfNothingReportsNothing) {
  text("a rw { }\n");
  EXPECT_EQ(commitOf({}), COMMIT_DONE);
  EXPECT_EQ(changed_, Texts{});
}

TEST_F(CommitTest, ReportsAnInstanceTheFirstTimeAndThenItsChanges) {
  text("a rw { }\nbutton wo { }\nstrict rostrict { }\n");
  struct Case {
    std::vector<Staged> staged;
    Texts changed;
  };
  const Case cases[] = {
      {{{"a", ""}}, {"a"}},  // the committed value already, but never reported
      {{{"a", ""}}, {}},
      {{{"a", "1"}}, {"a"}},
      {{{"a", "1"}}, {}},
      {{{"button", "go"}}, {"button"}},
      {{{"button", "go"}}, {"button"}},  // write-only: every time
      {{{"strict", "1", true}}, {}},     // never
      {{{"strict", "2", true}}, {}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.staged.front().name + "=" + c.staged.front().value);
    EXPECT_EQ(commitOf(c.staged), COMMIT_DONE);
    EXPECT_EQ(changed_, c.changed);
  }
  EXPECT_EQ(value("strict"), "2");
}

TEST_F(CommitTest, BringsEveryInstanceOfEveryDependentIntoItsBounds) {
  text(R"(
chan index { rangeValid { 1..2, "x" } }
limit rw { rangeValid { 1..100 } }
gain rw { index { chan } rangeValid { 0..(limit) } }
trim rw { index { chan } rangeValid { (gain)..(gain + 5) } }
other rw { rangeValid { 0..9 } }
)");
  EXPECT_EQ(commitOf({{"limit", "50"}, {"gain[1]", "40"}, {"gain[2]", "99"}}), COMMIT_DONE);
  // The empty value is none that a span allows, but stays empty where 0 is allowed.
  EXPECT_EQ(changed_,
            (Texts{"gain[1]", "gain[2]", "gain[x]", "limit", "trim[1]", "trim[2]", "trim[x]"}));
  EXPECT_EQ(value("gain[1]"), "40");
  EXPECT_EQ(value("gain[2]"), "50");
  EXPECT_EQ(value("gain[x]"), "");
  EXPECT_EQ(value("trim[2]"), "50");
  EXPECT_EQ(value("trim[x]"), "");

  EXPECT_EQ(commitOf({{"limit", "45"}}), COMMIT_DONE);
  EXPECT_EQ(changed_, (Texts{"gain[2]", "limit"}));  // 50 is still within 45..50
  EXPECT_EQ(commitOf({{"limit", "30"}}), COMMIT_DONE);
  EXPECT_EQ(changed_, (Texts{"gain[1]", "gain[2]", "limit", "trim[1]", "trim[2]"}));
  EXPECT_EQ(value("trim[1]"), "35");
  EXPECT_EQ(value("other"), "");
}

TEST_F(CommitTest, ReachesWhoeverRefersToOneInstance) {
  text(R"(
chan index { rangeValid { 1..2 } }
gain rw { index { chan } }
sum rw { rangeValid { 0..(gain[2]) } }
)");
  EXPECT_EQ(commitOf({{"sum", "9"}, {"gain[2]", "5"}}), COMMIT_DONE);
  EXPECT_EQ(value("sum"), "5");
  EXPECT_EQ(commitOf({{"gain[2]", "3"}}), COMMIT_DONE);
  EXPECT_EQ(changed_, (Texts{"gain[2]", "sum"}));
  EXPECT_EQ(commitOf({{"gain[1]", "1"}}), COMMIT_DONE);  // sum is asked again, and stays
  EXPECT_EQ(changed_, Texts{"gain[1]"});
}

TEST_F(CommitTest, AppliesLaterLevelsAfterAFailure) {
  text(R"(
i index { rangeValid { 0..1 } }
a rw { index { i } }
m rw { }
n rw { index { i } }
z rw { rangeValid { 0..(m) } }
)");
  // a[9] fails at level 0 and leaves m unwalked: m keeps what it held, and z follows that.
  EXPECT_EQ(commitOf({{"m", "5"}, {"z", "3"}}), COMMIT_DONE);
  EXPECT_EQ(commitOf({{"a[0]", "1"}, {"a[9]", "1"}, {"m", "1"}}), COMMIT_INVALID_INDEX);
  EXPECT_EQ(changed_, (Texts{"a[0]"}));
  EXPECT_EQ(log_, (Texts{"set: ERROR \"a\": Invalid index value[\"i\"=\"9\"]", "Var list begin",
                         "Var list end", "commit: ERROR \"a[9]\"=\"1\": ret=-3"}));
  EXPECT_EQ(value("m"), "5");
  EXPECT_EQ(value("z"), "3");

  // What is before the failure is committed, and its dependents follow in their level.
  EXPECT_EQ(commitOf({{"m", "2"}, {"n[9]", "1"}}), COMMIT_INVALID_INDEX);
  EXPECT_EQ(changed_, (Texts{"m", "z"}));
  EXPECT_EQ(value("z"), "2");
}

TEST_F(CommitTest, ShowsDependentsTheCommittedValueOfARefusedWrite) {
  text(R"(
lock rw { }
m rw { ctrlRO (lock == 1) }
z rw { rangeValid { 0..(m) } }
)");
  EXPECT_EQ(commitOf({{"m", "5"}, {"z", "4"}}), COMMIT_DONE);
  EXPECT_EQ(commitOf({{"lock", "1"}}), COMMIT_DONE);
  EXPECT_EQ(commitOf({{"m", "1"}}), COMMIT_DONE);  // not allowed: nothing happens, silently
  EXPECT_EQ(changed_, Texts{});
  EXPECT_EQ(log_, Texts{});
  EXPECT_EQ(value("m"), "5");
  EXPECT_EQ(value("z"), "4");
  EXPECT_EQ(commitOf({{"m", "1", true}}), COMMIT_DONE);  // forced
  EXPECT_EQ(changed_, (Texts{"m", "z"}));
  EXPECT_EQ(value("z"), "1");
}

TEST_F(CommitTest, ShowsDependentsTheValueOfAStoredStrictWrite) {
  text("m rostrict { }\nz rw { rangeValid { 0..(m) } }\n");
  EXPECT_EQ(commitOf({{"z", "9"}, {"m", "9", true}}), COMMIT_DONE);
  EXPECT_EQ(commitOf({{"m", "3", true}}), COMMIT_DONE);
  EXPECT_EQ(changed_, Texts{"z"});
  EXPECT_EQ(value("z"), "3");
}

TEST_F(CommitTest, ReplacesAResetValueByItsDefault) {
  text(R"(
chan index { rangeValid { 1..2 } }
mode rw { default { "auto" } }
gain rw { index { chan } rangeValid { 0..255 }
          default (mode == "film") { (chan * 100) } default { 7 } }
none rw { }
)");
  EXPECT_EQ(commitOf({{"mode", "reset"}, {"gain[2]", "reset"}, {"none", "reset"}}), COMMIT_DONE);
  EXPECT_EQ(value("mode"), "auto");
  EXPECT_EQ(value("gain[2]"), "7");
  EXPECT_EQ(value("none"), "");
  EXPECT_EQ(changed_, (Texts{"gain[1]", "gain[2]", "mode", "none"}));
  EXPECT_EQ(value("gain[1]"), "");
  EXPECT_EQ(commitOf({{"mode", "film"}, {"gain[2]", "reset"}}), COMMIT_DONE);
  EXPECT_EQ(value("gain[2]"), "200");  // resets are resolved against what is staged
}

TEST_F(CommitTest, PassesOverInstancesThatDoNotExistNow) {
  text(R"(
count rw { }
on rw { }
chan index { rangeValid { 1..3 } rangeValid (on == 1) { 1..(count) } ctrlValid (on != 0) }
gain rw { index { chan } rangeValid { 0..(count * 10) } }
)");
  EXPECT_EQ(commitOf({{"on", "1"}, {"count", "3"}, {"gain[3]", "30"}}), COMMIT_DONE);
  EXPECT_EQ(value("gain[3]"), "30");
  // Narrowing the index leaves gain[3] as it was, without a word.
  EXPECT_EQ(commitOf({{"count", "2"}}), COMMIT_DONE);
  EXPECT_EQ(log_, Texts{});
  EXPECT_EQ(value("gain[3]"), "30");
  // A client that stages the missing instance hears of it.
  EXPECT_EQ(commitOf({{"gain[3]", "5"}}), COMMIT_INVALID_INDEX);
  EXPECT_EQ(log_, (Texts{"set: ERROR \"gain\": Invalid index value[\"chan\"=\"3\"]",
                         "Var list begin", "   \"count\"=\"2\"", "   \"on\"=\"1\"", "Var list end",
                         "commit: ERROR \"gain[3]\"=\"5\": ret=-3"}));
  EXPECT_EQ(commitOf({{"on", "0"}}), COMMIT_DONE);
  EXPECT_EQ(log_, Texts{});
  EXPECT_EQ(commitOf({{"gain[1]", "5"}}), COMMIT_INVALID_INDEX);
  EXPECT_EQ(log_.front(), "set: ERROR \"gain\": Invalid index[chan]");
}

TEST_F(CommitTest, FindsInstancesThatCameToHoldAValueInBetween) {
  text(R"(
count rw { }
limit rw { }
chan index { rangeValid { 1..3 } rangeValid (limit > 0) { 1..(count) } }
gain rw { index { chan } rangeValid { 0..(limit) } }
)");
  const auto gains = [this] { return Texts{value("gain[1]"), value("gain[2]"), value("gain[3]")}; };
  EXPECT_EQ(commitOf({{"count", "1"}, {"limit", "50"}}), COMMIT_DONE);
  EXPECT_EQ(changed_, (Texts{"count", "gain[1]", "limit"}));
  EXPECT_EQ(commitOf({{"count", "3"}, {"gain[3]", "40"}}), COMMIT_DONE);
  EXPECT_EQ(changed_, (Texts{"count", "gain[2]", "gain[3]"}));
  EXPECT_EQ(commitOf({{"gain[2]", "45"}}), COMMIT_DONE);
  EXPECT_EQ(gains(), (Texts{"", "45", "40"}));
  for (const char* limit : {"42", "30", "20"}) {
    SCOPED_TRACE(limit);
    EXPECT_EQ(commitOf({{"limit", limit}}), COMMIT_DONE);
    EXPECT_EQ(gains(), (Texts{"", limit, limit == std::string_view("42") ? "40" : limit}));
  }
}

TEST_F(CommitTest, TellsAWrongNumberOfIndices) {
  text("chan index { rangeValid { 1..2 } }\ngain rw { index { chan } }\nmode rw { }\n");
  struct Case {
    const char* name;
    std::string log;
  };
  const Case cases[] = {
      {"gain", "set: ERROR \"gain\": Not enough indices 1>0"},
      {"gain[1][2]", "set: ERROR \"gain\": Not enough indices 1>2"},
      {"mode[1]", "set: ERROR \"mode\": Not enough indices 0>1"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(commitOf({{c.name, "1"}}), COMMIT_INVALID_INDEX);
    EXPECT_EQ(log_, (Texts{c.log, std::string("commit: ERROR \"") + c.name + "\"=\"1\": ret=-3"}));
    EXPECT_EQ(changed_, Texts{});
  }
}

TEST_F(CommitTest, RefusesAValueThatItsBoundsCannotAgreeOn) {
  text(R"(
mode rw { }
a rw { rangeValid { 0..9 } rangeValid (mode == 1) { 20..30 } }
z rw { rangeValid { 0..(a) } }
)");
  EXPECT_EQ(commitOf({{"a", "5"}, {"z", "7"}}), COMMIT_DONE);
  EXPECT_EQ(value("z"), "5");
  // The condition's range corrects 5 to 20, which the base bounds refuse. What a held stays, and is
  // what z sees.
  EXPECT_EQ(commitOf({{"mode", "1"}}), COMMIT_INVALID_VALUE);
  EXPECT_EQ(log_,
            (Texts{"set: ERROR \"a\": Invalid value \"20\"", "commit: ERROR \"a\"=\"5\": ret=-2"}));
  EXPECT_EQ(changed_, Texts{"mode"});
  EXPECT_EQ(value("a"), "5");
  EXPECT_EQ(value("z"), "5");
}

TEST_F(CommitTest, LetsPairsSettleOnOneLevel) {
  text(R"(
left rw { rangeValid { 0..(100 - right) } }
right rw { rangeValid { 0..(100 - left) } }
)");
  EXPECT_EQ(commitOf({{"left", "30"}, {"right", "80"}}), COMMIT_DONE);
  // left is judged first, against the staged 80; right then against the corrected left.
  EXPECT_EQ(value("left"), "20");
  EXPECT_EQ(value("right"), "80");
}

TEST_F(CommitTest, CommitsThousandsOfIndependentValues) {
  std::string definitions;
  std::vector<Staged> staged;
  Texts names;
  for (int i = 1000; i < 3000; ++i) {
    const std::string name = "p" + std::to_string(i);
    definitions += name + " rw { rangeValid { 0..9 } }\n";
    staged.push_back({name, "5"});
    names.push_back(name);
  }
  text(definitions);
  EXPECT_EQ(commitOf(staged), COMMIT_DONE);
  EXPECT_EQ(changed_, names);
}

// Room for so many changes.
class LimitedRoom final : public ChangeRoom {
 public:
  explicit LimitedRoom(int changes) : left_(changes) {}
  [[nodiscard]] bool makeRoom(const Change& /*change*/) override { return left_-- > 0; }

 private:
  int left_;
};

TEST_F(CommitTest, TakesBackAValueThatFindsNoRoom) {
  text("a rw { }\nb rw { }\nc rw { }\n");
  ASSERT_EQ(commitOf({{"a", "old"}, {"b", "5 old"}, {"c", "old"}}), COMMIT_DONE);
  Transaction transaction(database_);
  for (const char* name : {"a", "b", "c"}) ASSERT_EQ(transaction.set(name, "7", true), 0);
  std::vector<Change> changes;
  LimitedRoom room(1);
  EXPECT_THROW(static_cast<void>(commit(transaction, changes, &room)), std::bad_alloc);
  ASSERT_EQ(changes.size(), 1U);
  EXPECT_EQ(changes[0].name, "a");
  EXPECT_EQ(value("a"), "7");
  EXPECT_EQ(value("b"), "5 old");
  EXPECT_EQ(value("c"), "old");
  EXPECT_TRUE(transaction.staged().empty());
}

// It was not announced, so that it is reported the next time.
TEST_F(CommitTest, ReportsAValueAgainThatFoundNoRoom) {
  text("a rw { }\n");
  Transaction transaction(database_);
  ASSERT_EQ(transaction.set("a", "", true), 0);
  std::vector<Change> changes;
  LimitedRoom room(0);
  EXPECT_THROW(static_cast<void>(commit(transaction, changes, &room)), std::bad_alloc);
  EXPECT_TRUE(changes.empty());
  EXPECT_EQ(commitOf({{"a", ""}}), COMMIT_DONE);
  EXPECT_EQ(changed_, Texts{"a"});
}

}  // namespace
