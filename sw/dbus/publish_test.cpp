#include "sw/dbus/publish.h"

#include <gtest/gtest.h>

#include "database/commit.h"
#include "sw/dbus/reply.h"
#include "sw/dbus/test_service.h"
#include "sw/parm/parm_name.h"

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

TEST(Publish, SendsInPortionsWhatIsTooMuchForOneSignal) {
  TestService service("a rw {}\nb rw {}\nc rw {}\n");
  const std::string value(MAX_MESSAGE_BYTES / 2 - 7, 'x');  // with "a=" and the end: half a signal
  store(service.database(), {{"a", value}, {"b", value}, {"c", "5"}});
  publish(service.object(), changesOf(service.database(), {"a", "b", "c"}));
  EXPECT_TRUE(service.newSignals() == (Signals{{"a=" + value, "b=" + value}, {"c=5"}}));

  store(service.database(), {{"b", value + "x"}});
  publish(service.object(), changesOf(service.database(), {"a", "b", "c"}));
  EXPECT_TRUE(service.newSignals() == (Signals{{"a=" + value}, {"b=" + value + "x", "c=5"}}));
}

TEST(Publish, LeavesOutWhatFitsIntoNoSignal) {
  TestService service("a rw {}\nb rw {}\nc rw {}\n");
  const std::string value(MAX_MESSAGE_BYTES - 7, 'x');  // with "b=", length and end: all of it
  store(service.database(), {{"a", "1"}, {"b", value}, {"c", "3"}});
  publish(service.object(), changesOf(service.database(), {"a", "b", "c"}));
  EXPECT_TRUE(service.newSignals() == (Signals{{"a=1"}, {"b=" + value}, {"c=3"}}));

  store(service.database(), {{"b", value + "x"}});
  publish(service.object(), changesOf(service.database(), {"a", "b", "c"}));
  EXPECT_TRUE(service.newSignals() == (Signals{{"a=1", "c=3"}}));
}

}  // namespace
