#include "sw/dbus/publish.h"

#include <gtest/gtest.h>

#include "database/commit.h"
#include "sw/dbus/reply.h"
#include "sw/parm/parm_name.h"
#include "tests/support/glib_allocations.h"
#include "tests/support/mappings.h"
#include "tests/support/service.h"

namespace {

using Signals = std::vector<std::vector<std::string>>;

// Commits the values; what changes is not announced.
void store(Database& database, const std::map<std::string, std::string>& values) {
  Transaction transaction(database);
  for (const auto& [name, value] : values) ASSERT_EQ(transaction.set(name, value, true), 0) << name;
  std::vector<Change> changes;
  ASSERT_EQ(commit(transaction, changes), 0);
}

// The committed values of `names`, as a commit reports them.
std::vector<Change> changesOf(Database& database, const std::vector<std::string>& names) {
  std::vector<Change> changes;
  for (const std::string& name : names) {
    const ParmName parts = splitName(name);
    changes.push_back({name, database.findParm(parts.base)->parm.committed(parts.indices)});
  }
  return changes;
}

TEST(Publish, SaysNothingWithoutNames) {
  TestService service("a rw {}");
  publish(service.object(), {});
  EXPECT_EQ(service.newSignals(), Signals{});
}

TEST(Publish, GivesTheCommittedValueOfEachName) {
  TestService service(
      "a rw {}\nb rw {}\nchannel index { rangeValid { 1..2 } }\n"
      "gain rw { index { channel } }\n");
  store(service.database(), {{"a", "5"}, {"gain[2]", "\xff"}});
  publish(service.object(), changesOf(service.database(), {"a", "b", "gain[2]"}));
  EXPECT_EQ(service.newSignals(), (Signals{{"a=5", "b=", "gain[2]=\ufffd"}}));
}

// `count` changes of parameters named "p10" and so on, which all hold `value`.
std::string manyParameters(size_t count) {
  std::string text;
  for (size_t i = 0; i < count; ++i) text += "p" + std::to_string(10 + i) + " rw {}\n";
  return text;
}

TEST(Publish, SendsInPortionsWhatIsTooMuchForOneSignal) {
  constexpr size_t HALF = 32;  // so many fill one signal
  TestService service(manyParameters(2 * HALF));
  // With "p10=", length and end a 32nd of a signal each.
  const std::string fitting(MAX_MESSAGE_BYTES / HALF - 9, 'x');
  struct Case {
    std::string value;  // of the first parameter
    size_t first;       // texts of the first signal
  };
  const Case cases[] = {{fitting, HALF}, {fitting + "xxxx", HALF - 1}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.first);
    std::vector<std::string> names;
    for (size_t i = 0; i < 2 * HALF - 1; ++i) {
      names.push_back("p" + std::to_string(10 + i));
      store(service.database(), {{names.back(), i == 0 ? c.value : fitting}});
    }
    publish(service.object(), changesOf(service.database(), names));
    const Signals signals = service.newSignals();
    ASSERT_EQ(signals.size(), 2U);
    EXPECT_EQ(signals[0].size(), c.first);
    EXPECT_EQ(signals[1].size(), names.size() - c.first);
    EXPECT_TRUE(signals[0].front() == "p10=" + c.value);
    EXPECT_TRUE(signals[1].back() == names.back() + "=" + fitting);
  }
}

TEST(Publish, LeavesOutWhatFitsIntoNoSignal) {
  TestService service("a rw {}\nb rw {}\nc rw {}\n");
  store(service.database(), {{"a", "1"}, {"b", ""}, {"c", "3"}});
  std::vector<Change> changes = changesOf(service.database(), {"a", "b", "c"});
  changes[1].name = std::string(MAX_MESSAGE_BYTES - 6, 'b');  // with "=", length and end: all of it
  publish(service.object(), changes);
  EXPECT_TRUE(service.newSignals() == (Signals{{"a=1"}, {changes[1].name + "="}, {"c=3"}}));

  changes[1].name += "b";
  publish(service.object(), changes);
  EXPECT_TRUE(service.newSignals() == (Signals{{"a=1", "c=3"}}));
  publish(service.object(), {changes[1]});
  EXPECT_EQ(service.newSignals(), Signals{});
  EXPECT_EQ(GlibAllocations::kept.size(), 0U);
}

// A text and its copy, 48 bytes beside each of them, and three times what it is in the message.
TEST(SignalRoom, KeepsWhatTheSignalTakes) {
  TestService service("ab rw {}\n");
  struct Case {
    std::string value;
    size_t changes;  // of that value
    size_t bytes;    // that each of them takes
  };
  const Case cases[] = {
      {"5", 100, 0},  // little is always there
      {"5", 10000, 2 * (size_t{4} + 48) + 3 * size_t{12}},
      {std::string(1000, 'x'), 1000, 2 * (size_t{1003} + 48) + 3 * size_t{1008}},
      {std::string(1000, '\xff'), 1000,
       2 * (size_t{3003} + 48) + 3 * size_t{3008}},  // each byte becomes three
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.value.substr(0, 5));
    store(service.database(), {{"ab", c.value}});
    const Change change = changesOf(service.database(), {"ab"}).front();
    SignalRoom room;
    for (size_t i = 0; i < c.changes; ++i) ASSERT_TRUE(room.makeRoom(change));
    EXPECT_GE(Mappings::kept + SMALL_MEMORY, c.changes * c.bytes);
    EXPECT_LE(Mappings::kept, 3 * c.changes * c.bytes);
    room.giveBack();
    EXPECT_EQ(Mappings::kept, 0U);
  }
}

TEST(SignalRoom, IsKeptToTheByte) {
  TestService service("ab rw {}\n");
  struct Case {
    std::string value;
    size_t bytes;
  };
  const Case cases[] = {
      {std::string(100000, 'x'), 2 * (size_t{100003} + 48) + 3 * size_t{100008}},
      {std::string(100000, '\xff'), 2 * (size_t{300003} + 48) + 3 * size_t{300008}},
  };
  for (const Case& c : cases) {
    store(service.database(), {{"ab", c.value}});
    SignalRoom room;
    ASSERT_TRUE(room.makeRoom(changesOf(service.database(), {"ab"}).front()));
    EXPECT_EQ(Mappings::kept, c.bytes);
  }
}

}  // namespace
