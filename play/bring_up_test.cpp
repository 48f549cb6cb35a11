// Bringing a device up: that the recipe of ostrel(1) gives every text its defaults.
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <optional>

#include "base/system_log.h"
#include "database/commit.h"
#include "database/dependencies.h"
#include "database/index_query.h"
#include "database/index_values.h"
#include "database/plan.h"
#include "database/range_query.h"
#include "database/transaction.h"
#include "play/bring_up.h"
#include "play/known_device.h"
#include "sw/parm/parm_name.h"
#include "tests/support/random_count.h"
#include "tests/support/random_texts.h"

namespace {

// The recipe's client, without a bus.
class EngineClient final : public DeviceClient {
 public:
  explicit EngineClient(Database& database) : database_(database), transaction_(database) {}

  Names dependencies(const std::string& parm) override {
    std::set<std::string> names;
    EXPECT_EQ(::dependencies(database_, parm, false, names), DEPENDENCIES_FOUND) << parm;
    return {names.begin(), names.end()};
  }
  Names presentIndices(const std::string& parm) override {
    return validIndices(database_, transaction_.staged(), database_.findParm(parm)->parm);
  }
  Names indexValues(const std::string& index) override {
    Texts values;
    Spans spans;
    EXPECT_EQ(indexRange(database_, transaction_.staged(), index, values, spans), INDEX_RANGE_FOUND)
        << index;
    for (const auto& [low, high] : spans) {
      for (int32_t number = low; number <= high; ++number) values.push_back(std::to_string(number));
    }
    return values;
  }
  bool reset(const Names& names) override {
    for (const std::string& name : names) EXPECT_EQ(transaction_.reset(name, true), STAGE_DONE);
    return commitAll();
  }
  void set(const std::string& name, const std::string& value) override {
    static_cast<void>(transaction_.set(name, value, true));
    static_cast<void>(commitAll());
  }
  Names values(const Names& names) override {
    Names values;
    for (const std::string& name : names) {
      EXPECT_EQ(transaction_.get(name, values.emplace_back()), 0) << name;
    }
    return values;
  }
  bool allowsOnlyZero(const std::string& name) override {
    BoundsParm range;
    return queryRange(database_, transaction_.staged(), name, range) == RANGE_FOUND &&
           range.strings().texts().empty() && range.integers().spans() == Spans{{0, 0}};
  }

 private:
  bool commitAll() {
    std::vector<Change> changes;
    return commit(transaction_, changes) == COMMIT_DONE;
  }

  Database& database_;
  Transaction transaction_;
};

// Every instance that there may be at one time or another.
Texts instancesOf(Database& database) {
  Texts names;
  for (const ParmEntry* entry : database.parmsInNameOrder()) {
    forEachInstance(database, entry->parm, [&](const IndexTuple& indices) {
      names.push_back(fullName(entry->parm.name(), indices));
    });
  }
  return names;
}

// A device that is brought up.
struct Device {
  /// What is wrong with the text fails the test.
  Device(std::string_view text, const Constants& constants) { define(database, text, constants); }
  /// Of a text that was built before.
  explicit Device(std::string_view text) { EXPECT_EQ(defineOrRefuse(database, text), 0); }

  void bringUp() { recipe.emplace(client, *knownDevice(database)).run(); }
  std::string value(const std::string& name) { return client.values({name}).front(); }
  // The instances that exist, as the index queries tell, and hold the empty text.
  Texts empty() {
    Texts names = recipe->instances();
    std::erase_if(names, [&](const std::string& name) { return !value(name).empty(); });
    return names;
  }

  Database database;
  EngineClient client{database};
  std::optional<BringUp> recipe{};
};

class BringUpTest : public testing::Test {
 protected:
  Texts& log() { return log_; }

 private:
  Texts log_;
  LogRedirection redirection_{[this](const std::string& line) { log_.push_back(line); }};
};

struct Example {
  const char* what;
  std::string_view text;
  Texts values;         // as NAME=VALUE
  bool isQuiet = true;  // whether no value is refused on the way
};

TEST_F(BringUpTest, GivesWhatExistsItsDefaults) {
  const Example examples[] = {
      {"an index that a default narrows",
       "n rw { rangeValid { 1..3 } default { 2 } }\n"
       "i index { rangeValid { 1..3 } rangeValid ( n == 0 ) { 1..3 } rangeValid ( n ) { 1..(n) } "
       "}\n"
       "gain rw { index { i } default { 5 } }\n",
       {"n=2", "gain[1]=5", "gain[2]=5", "gain[3]="}},
      {"an index that only a default makes exist",
       "audio rw { default { 1 } }\n"
       "i index { ctrlValid ( audio ) rangeValid { 1..2 } }\ngain rw { index { i } default { 5 } "
       "}\n",
       {"gain[1]=5", "gain[2]=5"}},
      {"an index that a default takes away",
       "audio rw { rangeValid { \"on\", \"off\" } default { \"off\" } }\n"
       "i index { ctrlValid ( audio != \"off\" ) rangeValid { 1..2 } }\n"
       "gain rw { index { i } default { 5 } }\n",
       {"audio=off", "gain[1]=", "gain[2]="}},
      {"a default that looks at a later name",
       "exposure rw { default ( mode == \"day\" ) { 10 } default ( mode == \"night\" ) { 90 } }\n"
       "mode rw { rangeValid { \"day\", \"night\" } default { \"night\" } }\n",
       {"exposure=90"}},
      {"a default in a range that follows later",
       "gain rw { rangeValid { 0..(limit) } default { 70 } }\n"
       "limit ro { rangeValid ( mode == \"video\" ) { 100 } rangeValid ( mode != \"video\" ) { 10 "
       "} "
       "}\nmode rw { rangeValid { \"film\", \"video\" } default { \"video\" } }\n",
       {"gain=70", "limit=100"}},
      {"a computed value of 0",
       "mode rw { default { 5 } }\nsecond ro { rangeValid { (mode == 4) } }\n"
       "third ro { index { i } rangeValid { (mode - 5) } }\ni index { rangeValid { 1..2 } }\n",
       {"second=0", "third[1]=0", "third[2]=0"}},
      {"no default and a choice",
       "mode rw { rangeValid { 0..1 } }\nnote rw { }\n",
       {"mode=", "note="}},
      {"limits of each other",
       "high rw { rangeValid { (low + 1)..9 } default { 4 } }\n"
       "low rw { rangeValid { 0..(high - 1) } default { 3 } }\n",
       {"high=4", "low=3"}},
      // Both defaults are there before either is judged; one after the other, both would become 0.
      {"limits of each other that begin at 0",
       "a rw { rangeValid { 0..(b) } default { 5 } }\nb rw { rangeValid { 0..(a) } default { 7 } "
       "}\n",
       {"a=5", "b=5"}},
      {"defaults of each other, against the order of names",
       "a rw { default { (b + 1) } }\nb rw { rangeValid { 3..5 } rangeValid ( a < 0 ) { 4 } "
       "default { 3 } }\n",
       {"a=4", "b=3"}},
      {"an instance whose default looks at another",
       "i index { rangeValid { 1..3 } }\n"
       "a rw { index { i } default ( i == 3 ) { 7 } default { (a[3]) } }\n",
       {"a[1]=7", "a[2]=7", "a[3]=7"}},
      {"one that refuses the empty value, and one behind it",
       "mode rw { default { 1 } }\n"
       "level rw { rangeValid { 0..9 } rangeValid ( mode == 2 ) { 3..5 } rangeValid ( mode == 3 ) "
       "{ 12 } rangeValid ( mode == 1 ) { 15 } }\n"
       "name rw { default ( mode == 1 ) { \"one\" } }\n",
       {"level=", "mode=1", "name=one"},
       false},
      {"an index that looks at another's values",
       "i index { rangeValid { 1..2 } }\n"
       "j index { rangeValid { 1..2 } rangeValid ( i == 1 ) { 1 } rangeValid ( i == 2 ) { 2 } }\n"
       "a rw { index { i, j } default { 5 } }\n",
       {"a[1][1]=5", "a[1][2]=", "a[2][1]=", "a[2][2]=5"},
       false},
      {"instances that exist as soon as one holds a value",
       "i index { rangeValid { 1..2 } rangeValid ( a[1] ) { 1..2 } rangeValid ( a[2] ) { 1..2 } }\n"
       "a rw { index { i } default { (i + 4) } }\n",
       {"a[1]=5", "a[2]=6"}},
  };
  for (const Example& example : examples) {
    SCOPED_TRACE(example.what);
    log().clear();
    Device device(example.text, {});
    device.bringUp();
    EXPECT_TRUE(device.recipe->restless().empty());
    for (const std::string& fact : example.values) {
      const std::string name = fact.substr(0, fact.find('='));
      EXPECT_EQ(name + "=" + device.value(name), fact);
    }
    EXPECT_EQ(log().empty(), example.isQuiet) << testing::PrintToString(log());
  }
}

TEST_F(BringUpTest, LetsTheLastValuesLeadToDefaultsOfTheirOwn) {
  Device device(
      "n rw { rangeValid { 1..3 } default { 2 } }\n"
      "i index { rangeValid { 1..3 } rangeValid ( n == 0 ) { 1..3 } rangeValid ( n ) { 1..(n) } }\n"
      "gain rw { index { i } default { 5 } ctrlRO ( i == 2 ) }\n",
      {});
  KnownDevice known = *knownDevice(device.database);
  known.lastValues = {{"gain[2]", "9"}, {"n", "3"}};
  BringUp(device.client, known).run();
  EXPECT_EQ(device.client.values({"gain[1]", "gain[2]", "gain[3]", "n"}),
            (Texts{"5", "9", "5", "3"}));
  EXPECT_EQ(log(), Texts());
}

TEST_F(BringUpTest, EndsWhereDefaultsNeverRest) {
  Device device(
      "a rw { default { (a + 1) } }\nb rw { default { (a > 0) } }\nc rw { default { 3 } }\n", {});
  device.bringUp();
  EXPECT_EQ(device.recipe->restless(), std::set<std::string>{"a"});
  EXPECT_EQ(device.recipe->rounds(), BringUp::MOST_ROUNDS);
  EXPECT_EQ(device.client.values({"b", "c"}), (Texts{"1", "3"}));
}

std::string frameSynchroniser() {
  std::ifstream file(std::string(EXAMPLES_DIRECTORY) + "/frame-synchroniser.ostrel");
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

TEST_F(BringUpTest, FillsAFrameSynchroniserWithTwoAudioGroups) {
  std::string text = frameSynchroniser();
  const std::string embedGroups = "  rangeValid { 1..4 }\n  default { 4 }\n";
  const size_t place = text.find(embedGroups);
  ASSERT_NE(place, std::string::npos);
  text.replace(place, embedGroups.size(), "  rangeValid { 1..4 }\n  default { 2 }\n");
  Device device(text, {{"MODEL", "pro"}, {"CHANNELS", "2"}, {"AUDIO", "1"}});
  device.bringUp();
  // Of the instances that there are: what has no default, and what the standard does not have.
  EXPECT_EQ(device.empty(), (Texts{"firmware_version", "input_name[1]", "input_name[2]",
                                   "serial_number", "wss_mode"}));
  EXPECT_EQ(device.client.values({"embed_groups", "audio_gain[1][1]", "audio_gain[2][4]"}),
            (Texts{"2", "0", "0"}));
  EXPECT_EQ(log(), Texts());
}

// What an instance of a device that is up holds after a reset of it alone, and after its value was
// judged some times more, as by commits of what it depends on: a quoted number beside number items
// is itself outside the range that gave it, and a target of a translation may be.
std::set<std::string> valuesOfReset(Device& device, const std::string& name) {
  device.client.reset({name});
  const bool isFilled =
      device.value(name).empty() &&
      !knownDevice(device.database)->replacingZero.contains(std::string(baseName(name))) &&
      device.client.allowsOnlyZero(name);
  if (isFilled) device.client.set(name, "0");
  std::set<std::string> values = {device.value(name)};
  for (int turn = 0; turn < 10 && !isFilled; ++turn) {
    device.client.set(name, device.value(name));
    values.insert(device.value(name));
  }
  return values;
}

// The instances that a reset alone would change.
Texts notAtRest(const std::string& text, const std::set<std::string>& restless) {
  Device device(text);
  Texts faults;
  for (const std::string& name : instancesOf(device.database)) {
    if (restless.contains(std::string(baseName(name)))) continue;
    Device again(text);
    again.bringUp();
    const std::string held = again.value(name);
    const std::set<std::string> values = valuesOfReset(again, name);
    if (!values.contains(held)) faults.push_back(name + "=" + held + ", not " + *values.begin());
  }
  return faults;
}

bool dependsOnItself(Database& database, const std::string& parm) {
  ParmEntry* const entry = database.findParm(parm);
  const std::vector<ParmEntry*> dependents = dependentsOf(database, {entry});
  return std::find(dependents.begin(), dependents.end(), entry) != dependents.end();
}

TEST_F(BringUpTest, LeavesNoRandomDeviceWithAnythingToReset) {
  constexpr uint32_t DEFINITIONS = randomCount(6000);
  uint32_t tried = 0;
  uint32_t restless = 0;
  // Many have a cycle of dependences, which is said there.
  testing::internal::CaptureStderr();
  for (uint32_t seed = 0; seed < DEFINITIONS; ++seed) {
    const std::string text = RandomTexts(seed).text();
    SCOPED_TRACE(text);
    if (Database database; defineOrRefuse(database, text) != 0) continue;
    ++tried;
    Device device(text);
    device.bringUp();
    for (const std::string& parm : device.recipe->restless()) {
      EXPECT_TRUE(dependsOnItself(device.database, parm)) << parm;
    }
    restless += device.recipe->restless().empty() ? 0 : 1;
    EXPECT_EQ(notAtRest(text, device.recipe->restless()), Texts());
  }
  static_cast<void>(testing::internal::GetCapturedStderr());
  RecordProperty("definitions", std::to_string(tried));
  RecordProperty("restless", std::to_string(restless));
  EXPECT_GE(tried, DEFINITIONS / 4);
  EXPECT_LE(restless, tried / 20);
}

}  // namespace
