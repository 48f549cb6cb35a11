#include "database/instance_state.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>

#include "base/system_log.h"
#include "database/plan.h"
#include "database/range_query.h"
#include "database/trial.h"
#include "sw/parm/statement_text.h"
#include "tests/support/random_texts.h"

namespace {

constexpr std::string_view TEXT = R"(mode rw { rangeValid { "slow", "fast" } }
rate rw { rangeValid (mode == "slow") { 1..10 } rangeValid (mode == "fast") { 1..100 } }
boost rw { ctrlValid (mode == "fast") ctrlRO (rate > 50) rangeValid { 0..1 } }
state ro { rangeValid { 0..9 } }
order wo { }
channel index { rangeValid { 1..4 }
  rangeValid (mode == "slow") { 1..2 } rangeValid (mode == "fast") { 1..4 } }
gain rw { index { channel } rangeValid { 0..9 } }
broken rw { rangeValid { 0..(7 / (rate - 5)) } }
)";

std::string shown(const InstanceState& state) {
  if (!state.isKnown) return "unknown";
  std::string text = state.exists ? "exists" : "absent";
  if (state.isWritable) text += " writable";
  if (state.isStaged) text += " staged";
  if (state.hasValue) text += " set";
  if (state.rangeResult != 0) return text + " no limits";
  for (const Span& span : state.range.integers().spans()) {
    text += " " + std::to_string(span.first) + ".." + std::to_string(span.second);
  }
  for (const std::string& allowed : state.range.strings().texts()) text += " " + allowed;
  return text;
}

class InstanceStateTest : public testing::Test {
 protected:
  InstanceStateTest() {
    define(database_, TEXT);
    Transaction transaction(database_);
    EXPECT_EQ(transaction.set("mode", "slow", false), STAGE_DONE);
    EXPECT_EQ(transaction.set("rate", "5", false), STAGE_DONE);
    std::vector<std::string> names;
    EXPECT_EQ(commitNames(transaction, names), COMMIT_DONE);
  }
  std::string stateOf(const char* name) { return shown(InstanceStates(transaction_).of(name)); }

  Database database_;
  Transaction transaction_{database_};
};

TEST_F(InstanceStateTest, TellsAllThatIsAsked) {
  const struct {
    const char* name;
    const char* state;
  } cases[] = {
      {"mode", "exists writable set fast slow"},
      {"rate", "exists writable set 1..10"},
      {"boost", "absent 0..1"},
      {"state", "exists 0..9"},
      {"order", "exists writable"},
      {"gain[2]", "exists writable 0..9"},
      {"gain[3]", "absent no limits"},
      {"gain", "absent no limits"},
      {"gain[1][1]", "absent no limits"},
      {"broken", "exists writable no limits"},
      {"channel", "unknown"},
      {"nosuch", "unknown"},
      {"", "unknown"},
  };
  for (const auto& [name, state] : cases) EXPECT_EQ(stateOf(name), state) << name;
}

TEST_F(InstanceStateTest, LooksAheadToTheCommitOfWhatIsStaged) {
  ASSERT_EQ(transaction_.set("mode", "fast", false), STAGE_DONE);
  ASSERT_EQ(transaction_.set("rate", "60", false), STAGE_DONE);
  const struct {
    const char* name;
    const char* state;
  } cases[] = {
      {"mode", "exists writable staged set fast slow"},
      {"rate", "exists writable staged set 1..100"},
      {"boost", "exists 0..1"},
      {"gain[3]", "exists writable 0..9"},
  };
  for (const auto& [name, state] : cases) EXPECT_EQ(stateOf(name), state) << name;
}

// A commit judges what nothing depends on before other values have followed.
TEST(InstanceStates, TellWhatExistsAfterTheCommitAndWhatItStores) {
  Database database;
  define(database,
         "mode rw { }\nspeed ro { rangeValid { (mode * 2) } }\n"
         "turbo rw { ctrlValid (speed == 4) }\nlimit rw { ctrlValid (speed == 4) }\n"
         "below rw { rangeValid { 0..(limit) } }\n");
  const struct {
    const char* mode;
    const char* turbo;
    const char* limit;
  } cases[] = {
      {"2", "exists", "exists writable"},
      {"1", "absent writable", "absent"},
  };
  for (const auto& [mode, turbo, limit] : cases) {
    Transaction transaction(database);
    ASSERT_EQ(transaction.set("mode", mode, false), STAGE_DONE);
    EXPECT_EQ(shown(InstanceStates(transaction).of("turbo")), turbo) << mode;
    EXPECT_EQ(shown(InstanceStates(transaction).of("limit")), limit) << mode;
    std::vector<std::string> names;
    ASSERT_EQ(commitNames(transaction, names), COMMIT_DONE);
  }
}

TEST(InstanceStates, TellThatNoValueLiesInAllRanges) {
  Database database;
  define(database,
         "mode rw { }\n"
         "narrow rw { rangeValid { 1, 2 } rangeValid (mode == 1) { 7 } }\n"
         "wide rw { rangeValid { 1, 7 } rangeValid (mode == 1) { 7 } }\n");
  const struct {
    const char* mode;
    const char* narrow;
    const char* wide;
  } cases[] = {
      {"1", "exists no limits", "exists writable 7..7"},
      {"2", "exists writable 1..2", "exists writable 1..1 7..7"},
  };
  for (const auto& [mode, narrow, wide] : cases) {
    Transaction transaction(database);
    ASSERT_EQ(transaction.set("mode", mode, false), STAGE_DONE);
    EXPECT_EQ(shown(InstanceStates(transaction).of("narrow")), narrow) << mode;
    EXPECT_EQ(shown(InstanceStates(transaction).of("wide")), wide) << mode;
  }
}

TEST_F(InstanceStateTest, GivesTheValueThatTheTransactionSees) {
  ASSERT_EQ(transaction_.set("rate", "60", false), STAGE_DONE);
  InstanceStates states(transaction_);
  EXPECT_EQ(*states.of("rate").value, "60");
  EXPECT_EQ(*states.of("mode").value, "slow");
  EXPECT_EQ(states.of("nosuch").value, nullptr);
}

// What a plain set of `name` becomes when everything is committed; nullopt where it is passed over.
std::optional<SetCode> setAndTry(Transaction& transaction, const std::string& name) {
  std::optional<SetCode> result;
  bool isFound = false;
  StagedValues copies(&transaction.staged());
  static_cast<void>(
      tryCommit(transaction, copies, [&](const StagedEntry& entry, std::optional<SetCode> code) {
        if (isFound || fullName(entry) != name) return;
        isFound = true;
        result = code;
      }));
  return result;
}

struct Step {
  std::string name;
  std::string value;
  bool isReset = false;
};

void stage(Transaction& transaction, const std::vector<Step>& steps) {
  for (const Step& step : steps) {
    static_cast<void>(step.isReset ? transaction.reset(step.name, true)
                                   : transaction.set(step.name, step.value, true));
  }
}

std::vector<Step> randomSteps(RandomTexts& random, size_t most) {
  std::vector<Step> steps;
  for (size_t count = random.below(most + 1); count > 0; --count) {
    steps.push_back(
        {random.oneOf({"a", "b", "c", "d"}) + random.oneOf({"", "[0]", "[1]", "[0][a]"}),
         random.oneOf(VALUES), random.below(4) == 0});
  }
  return steps;
}

// Whether what is set for a parameter may decide whether it is stored, also by way of others.
bool followsItself(Database& database, const std::string& name) {
  ParmEntry* const parm = database.findNamed(name);
  const std::vector<ParmEntry*> followers = dependentsOf(database, {parm});
  return std::ranges::find(followers, parm) != followers.end();
}

// Compares the state of `name` in the situation of `steps` with what the engine does. Returns
// whether it could be compared.
bool compareState(Database& database, const std::vector<Step>& steps, const std::string& name) {
  Transaction transaction(database);
  stage(transaction, steps);
  const InstanceState state = InstanceStates(transaction).of(name);
  BoundsParm range;
  EXPECT_EQ(state.rangeResult, queryRange(database, transaction.staged(), name, range));
  if (state.rangeResult == 0) {
    EXPECT_EQ(rangeItemsText(state.range), rangeItemsText(range));
  }
  EXPECT_EQ(state.value == nullptr ? "" : *state.value,
            transaction.find(name) == nullptr ? "" : *transaction.find(name));
  if (followsItself(database, name)) return false;
  bool isStaged = false;
  for (const std::string& value : VALUES) {
    isStaged = isStaged || transaction.set(name, value, false) == STAGE_DONE;
  }
  if (!isStaged) return false;
  const std::optional<SetCode> code = setAndTry(transaction, name);
  if (!code) return false;
  EXPECT_EQ(state.isWritable, *code != SET_NOT_STORED && *code != SET_INVALID_INDEX);
  return true;
}

TEST(RandomStates, AreWhatGetRangeAndASetSay) {
  const LogRedirection silence([](const std::string& /*line*/) {});
  size_t compared = 0;
  for (uint32_t seed = 0; seed < 3000 && !testing::Test::HasFailure(); ++seed) {
    RandomTexts random(seed);
    const std::string text = random.text();
    Database database;
    if (defineOrRefuse(database, text) != 0) continue;
    Transaction first(database);
    stage(first, randomSteps(random, 6));
    std::vector<std::string> names;
    static_cast<void>(commitNames(first, names));
    for (int round = 0; round < 3; ++round) {
      const std::vector<Step> steps = randomSteps(random, 2);
      for (const char name : std::string("abcd")) {
        for (const char* suffix : {"", "[0]", "[1]", "[a]", "[0][a]"}) {
          SCOPED_TRACE(text + "\n" + name + suffix);
          compared += compareState(database, steps, name + std::string(suffix)) ? 1 : 0;
        }
      }
    }
  }
  EXPECT_GT(compared, 1000U);
}

}  // namespace
