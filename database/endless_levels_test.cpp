// No endless level: a commit and a range query end whatever a definition text says.
//
// A level is walked again only because of a constraint rule that still fails, and no text makes
// one: that is looked at in every database here. Whatever goes on for ever all the same is ended by
// the alarm.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>

#include "base/system_log.h"
#include "database/commit.h"
#include "database/index_query.h"
#include "database/index_values.h"
#include "database/range_query.h"
#include "database/transaction.h"
#include "sw/parm/parm_name.h"
#include "tests/support/random_texts.h"

namespace {

// In seconds, for one test under sanitizers on a busy machine.
constexpr unsigned PATIENCE = 60;

class EndlessLevelsTest : public testing::Test {
 protected:
  EndlessLevelsTest() : redirection_([](const std::string& /*line*/) {}) { alarm(PATIENCE); }
  ~EndlessLevelsTest() override { alarm(0); }

 private:
  LogRedirection redirection_;  // what is refused here is not looked at
};

// A device whose definitions may be anything, with everything that a client can do to it.
class Device {
 public:
  /// As defineOrRefuse(): only after 0 the device can be used.
  int build(std::string_view text) {
    const int result = defineOrRefuse(database_, text);
    collectInstances();
    return result;
  }

  /// The full name of every instance.
  [[nodiscard]] const Texts& instances() const { return instances_; }

  /// Whether a level might be walked again.
  [[nodiscard]] bool hasRules() {
    const std::vector<ParmEntry*> parms = database_.parmsInNameOrder();
    return std::any_of(parms.begin(), parms.end(), [](const ParmEntry* entry) {
      return !entry->parm.constraintRules().empty();
    });
  }

  void set(const std::string& name, const std::string& value, bool force) {
    static_cast<void>(transaction_.set(name, value, force));
  }
  void reset(const std::string& name) { static_cast<void>(transaction_.reset(name, true)); }

  /// Asks for the range of every instance.
  void queryAll() {
    for (const std::string& name : instances_) {
      BoundsParm range;
      static_cast<void>(queryRange(database_, transaction_.staged(), name, range));
    }
    Texts texts;
    Spans spans;
    static_cast<void>(indexRange(database_, transaction_.staged(), "i", texts, spans));
  }

  /// The changed names with their values.
  Texts commitAll() {
    Texts changed;
    static_cast<void>(commitNames(transaction_, changed));
    for (std::string& name : changed) {
      std::string value;
      EXPECT_EQ(transaction_.get(name, value), 0);
      name += "=" + value;
    }
    return changed;
  }

 private:
  void collectInstances() {
    for (const ParmEntry* entry : database_.parmsInNameOrder()) {
      forEachInstance(database_, entry->parm, [&](const IndexTuple& indices) {
        instances_.push_back(fullName(entry->parm.name(), indices));
      });
    }
  }

  Database database_;
  Transaction transaction_{database_};
  Texts instances_;
};

// Sets every instance to every value and to its default, in commits of their own, with all ranges
// asked before each.
void tryEverything(Device& device) {
  for (const std::string& name : device.instances()) {
    for (const std::string& value : VALUES) {
      device.set(name, value, true);
      device.queryAll();
      device.commitAll();
    }
    device.reset(name);
    device.queryAll();
    device.commitAll();
  }
}

struct Form {
  const char* what;
  std::string_view text;
};

constexpr Form FORMS[] = {
    {"two disjoint run-time ranges that apply together",
     "a rw { rangeValid { (0)..(2), (5)..(b) } rangeValid ( b > 0 ) { (7)..(b) } }\nb rw { }\n"},
    {"a range and one that excludes it",
     "a rw { rangeValid { 0..2 } rangeValid ( b == 1 ) { 5..9 } rangeValid ( b ) { (b + 9) } }\n"
     "b rw { }\n"},
    {"an upper limit below the lower one",
     "a rw { rangeValid { (b)..(b - 1) } }\nb rw { rangeValid { 0..9 } }\n"},
    {"limits that pass each other",
     "a rw { rangeValid { (b)..(c) } }\nb rw { rangeValid { 0..9 } }\nc rw { rangeValid { 0..9 } "
     "}\n"},
    {"limits that name the value itself",
     "a rw { rangeValid { (sw::this + 1)..(sw::this + 2) } }\n"
     "b rw { rangeValid { 0..(sw::this - 1) } }\n"},
    {"limits that name the parameter itself",
     "a rw { rangeValid { (a + 1)..(a + 2) } }\nb rw { rangeValid { 0..(b - 1) } }\n"},
    {"the value itself in conditions",
     "a rw { rangeValid ( sw::this < 5 ) { 5..9 } rangeValid ( sw::this >= 5 ) { 0..4 } "
     "ctrlRO ( sw::this == 3 ) ctrlValid ( sw::this != 4 ) }\n"},
    {"the parameter itself in conditions",
     "a rw { rangeValid ( a < 5 ) { 5..9 } rangeValid ( a >= 5 ) { 0..4 } ctrlRO ( a == 3 ) "
     "ctrlValid ( a != 4 ) }\n"},
    {"a pair that pulls up for ever",
     "a rw { rangeValid { (b + 1)..(b + 2) } }\nb rw { rangeValid { (a + 1)..(a + 2) } }\n"},
    {"a pair that pulls apart",
     "a rw { rangeValid { (b + 1)..9 } }\nb rw { rangeValid { (a + 1)..9 } }\n"},
    {"a pair of opposite conditions",
     "a rw { rangeValid ( b == 0 ) { 1 } rangeValid ( b == 1 ) { 0 } }\n"
     "b rw { rangeValid ( a == 0 ) { 0 } rangeValid ( a == 1 ) { 1 } }\n"},
    {"a chain of pairs",
     "a rw { rangeValid { (b + 1)..9 } }\nb rw { rangeValid { (a + 1)..(c) } }\n"
     "c rw { rangeValid { (d)..(b - 1) } }\nd rw { rangeValid { (c - 1)..(e) } }\n"
     "e rw { rangeValid { (d + 5)..9 } }\n"},
    {"a star of pairs around one parameter",
     "a rw { rangeValid { (b + c)..(d) } }\nb rw { rangeValid { (a)..9 } }\n"
     "c rw { rangeValid { (a + 1)..9 } }\nd rw { rangeValid { 0..(a - 1) } }\n"},
    {"limits that overflow",
     "a rw { rangeValid { (b * b)..(b << 31) } }\nb rw { rangeValid { (a * 65536)..(a + a) } }\n"},
    {"limits without a value",
     "a rw { rangeValid { (1 / b)..(b % b) } }\nb rw { rangeValid { (a / 0) } }\n"},
    {"limits that are texts",
     "a rw { rangeValid { (b), \"a\" } }\nb rw { rangeValid { (a), \"b\" } }\n"},
    {"numbers and texts that replace each other",
     "a rw { rangeValid ( b == \"a\" ) { 1 } rangeValid ( b == 1 ) { \"a\" } }\n"
     "b rw { rangeValid ( a == 1 ) { \"a\" } rangeValid ( a == \"a\" ) { 1 } }\n"},
    {"translations that go round",
     "a rw { valueChange { 1 -> 2 } valueChange { 2 -> 5 } valueChange { 5 -> 1 } }\n"},
    {"a translation to itself", "a rw { valueChange { 1 -> 1 } valueChange { \"\" -> \"\" } }\n"},
    {"translations against the range",
     "a rw { rangeValid { 0..4 } rangeValid ( b ) { 5..(b) } valueChange { 0 -> 9 } "
     "valueChange { 9 -> 0 } valueChange { 5 -> 0 } }\nb rw { }\n"},
    {"translations of a pair",
     "a rw { rangeValid { (b) } valueChange { 1 -> 2 } valueChange { 2 -> 1 } }\n"
     "b rw { rangeValid { (a) } valueChange { 1 -> 2 } valueChange { 2 -> 1 } }\n"},
    {"read-only conditions that flip",
     "a rw { ctrlRO ( b == 0 ) rangeValid { (b) } }\nb rw { ctrlRO ( a == 1 ) rangeValid { (a + 1) "
     "} }\n"},
    {"validity conditions that flip",
     "a rw { ctrlValid ( b == 0 ) rangeValid { (1 - b) } }\n"
     "b rw { ctrlValid ( a == 1 ) rangeValid { (a) } }\n"},
    {"defaults that flip",
     "a rw { default ( b == 0 ) { 1 } default ( b == 1 ) { 0 } rangeValid { (b) } }\n"
     "b rw { default ( a == 0 ) { 0 } default ( a == 1 ) { 1 } rangeValid { (1 - a) } }\n"},
    {"defaults of one another", "a rw { default { (b + 1) } }\nb rw { default { (a + 1) } }\n"},
    {"a default of itself and out of range",
     "a rw { default { (a + 1) } rangeValid { 0..(b) } }\nb rw { default { (b) } }\n"},
    {"documented ranges that depend on each other",
     "a rw { rangeDoc ( b ) { (b)..(a) } rangeDoc { (a) } }\nb rw { rangeDoc { (a)..(b - 1) } }\n"},
    {"an index that depends on what it indexes",
     "i index { rangeValid { 0..2 } rangeValid ( a == 1 ) { 0 } rangeValid ( a == 0 ) { 1..2 } "
     "ctrlValid ( a != 5 ) }\na rw { index { i } }\n"},
    {"an index that depends on one instance of what it indexes",
     "i index { rangeValid { 0..2 } rangeValid { 0..(a[1]) } }\n"
     "a rw { index { i } rangeValid { (a[0])..(a[2] - 1) } }\n"},
    {"an index that depends on itself",
     "i index { rangeValid { 0..2 } rangeValid ( i == 1 ) { 2 } ctrlValid ( i != 2 ) }\n"
     "a rw { index { i } rangeValid { (i) } }\n"},
    {"indices that depend on each other",
     "i index { rangeValid { 0..1 } rangeValid ( j == 0 ) { 1 } }\n"
     "j index { rangeValid { 0..1 } rangeValid ( i == 1 ) { 0 } }\n"
     "a rw { index { i, j } rangeValid { (b) } }\nb rw { index { j, i } rangeValid { (a + 1) } "
     "}\n"},
    {"an index with translations that go round",
     "i index { rangeValid { 0..2 } valueChange { 0 -> 1 } valueChange { 1 -> 2 } "
     "valueChange { 2 -> 0 } }\na rw { index { i } rangeValid { (a[1] + 1)..9 } }\n"},
    {"instances that name one another",
     "i index { rangeValid { 0..2 } }\n"
     "a rw { index { i } rangeValid { (a[0] + 1)..(a[1] - 1) } ctrlRO ( a[2] == 1 ) }\n"},
    {"an indexed pair with crossed instances",
     "i index { rangeValid { 0..1 } }\n"
     "a rw { index { i } rangeValid { (b[0] + 1)..(b[1]) } }\n"
     "b rw { index { i } rangeValid { (a[1] + 1)..(a[0]) } }\n"},
    {"a pair of different indices",
     "i index { rangeValid { 0..1 } }\n"
     "a rw { index { i } rangeValid { (b + 1)..9 } }\nb rw { rangeValid { (a[0] + a[1])..9 } }\n"},
    {"parameters that nobody may write",
     "a ro { rangeValid { (b + 1) } }\nb ro { rangeValid { (a + 1) } }\nc rostrict { rangeValid { "
     "(d) } }\nd rostrict { rangeValid { (c + 1) } }\n"},
    {"parameters that nobody may read",
     "a wo { rangeValid { (b + 1) } }\nb wo { rangeValid { (a + 1) } }\n"},
    {"a figure of itself",
     "a rw { rangeValid { (vidStd::a::tlpf)..(vidStd::b::tlpf) } }\n"
     "b rw { rangeValid { (vidStd::a::spal) } }\n"},
};

TEST_F(EndlessLevelsTest, NoFormOfDefinitionIsWalkedAgain) {
  for (const Form& form : FORMS) {
    SCOPED_TRACE(form.what);
    Device device;
    ASSERT_EQ(device.build(form.text), 0);
    EXPECT_FALSE(device.hasRules());
    ASSERT_FALSE(device.instances().empty());
    tryEverything(device);
  }
}

// Where a pair never agrees, each of the two is corrected once in a commit, in name order.
TEST_F(EndlessLevelsTest, APairThatPullsUpRisesOneStepWithEachCommit) {
  Device device;
  ASSERT_EQ(device.build("a rw { rangeValid { (b + 1)..(b + 2) } }\n"
                         "b rw { rangeValid { (a + 1)..(a + 2) } }\n"),
            0);
  device.set("a", "0", true);
  EXPECT_EQ(device.commitAll(), (Texts{"a=1", "b=2"}));
  device.set("a", "0", true);
  EXPECT_EQ(device.commitAll(), (Texts{"a=3", "b=4"}));
  device.set("b", "0", true);
  EXPECT_EQ(device.commitAll(), (Texts{"a=2", "b=3"}));
}

// Some commits of some values, with all ranges asked before each.
void trySomething(Device& device, RandomTexts& random) {
  for (int commits = 0; commits < 6; ++commits) {
    for (size_t sets = 1 + random.below(3); sets > 0; --sets) {
      const std::string name = random.oneOf(device.instances());
      if (random.below(5) == 0) {
        device.reset(name);
      } else {
        device.set(name, random.oneOf(VALUES), random.below(2) == 0);
      }
    }
    device.queryAll();
    device.commitAll();
  }
}

TEST_F(EndlessLevelsTest, NoRandomDefinitionIsWalkedAgain) {
  constexpr uint32_t DEFINITIONS = 4000;
  uint32_t tried = 0;
  // Many have a cycle of dependences, which is said there.
  testing::internal::CaptureStderr();
  for (uint32_t seed = 0; seed < DEFINITIONS; ++seed) {
    RandomTexts random(seed);
    const std::string text = random.text();
    SCOPED_TRACE(text);
    Device device;
    if (device.build(text) != 0) continue;
    ++tried;
    EXPECT_FALSE(device.hasRules());
    trySomething(device, random);
  }
  static_cast<void>(testing::internal::GetCapturedStderr());
  RecordProperty("definitions", std::to_string(tried));
  EXPECT_GE(tried, DEFINITIONS / 4);
}

}  // namespace
