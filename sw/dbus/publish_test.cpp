#include "sw/dbus/publish.h"

#include <gtest/gtest.h>

#include "database/commit.h"
#include "sw/dbus/reply.h"
#include "sw/dbus/test_service.h"

namespace {

using Signals = std::vector<std::vector<std::string>>;

// Commits the values; what changes is not announced.
void store(Database& database, const std::map<std::string, std::string>& values) {
  Transaction transaction(database);
  for (const auto& [name, value] : values) ASSERT_EQ(transaction.set(name, value, true), 0) << name;
  std::vector<std::string> changed;
  ASSERT_EQ(commit(transaction, changed), 0);
}

TEST(Publish, SaysNothingWithoutNames) {
  TestService service("a rw {}");
  publish(service.object(), service.database(), {});
  EXPECT_EQ(service.newSignals(), Signals{});
}

TEST(Publish, GivesTheCommittedValueOfEachName) {
  TestService service(
      "a rw {}\nb rw {}\nchannel index { rangeValid { 1..2 } }\n"
      "gain rw { index { channel } }\n");
  store(service.database(), {{"a", "5"}, {"gain[2]", "\xff"}});
  // A name whose value cannot be read is left out.
  publish(service.object(), service.database(), {"a", "b", "gain[2]", "unknown"});
  EXPECT_EQ(service.newSignals(), (Signals{{"a=5", "b=", "gain[2]=\ufffd"}}));
}

TEST(Publish, SendsInPortionsWhatIsTooMuchForOneSignal) {
  TestService service("a rw {}\nb rw {}\nc rw {}\n");
  const std::string value(MAX_MESSAGE_BYTES / 2 - 7, 'x');  // with "a=" and the end: half a signal
  store(service.database(), {{"a", value}, {"b", value}, {"c", "5"}});
  publish(service.object(), service.database(), {"a", "b", "c"});
  EXPECT_TRUE(service.newSignals() == (Signals{{"a=" + value, "b=" + value}, {"c=5"}}));

  store(service.database(), {{"b", value + "x"}});
  publish(service.object(), service.database(), {"a", "b", "c"});
  EXPECT_TRUE(service.newSignals() == (Signals{{"a=" + value}, {"b=" + value + "x", "c=5"}}));
}

TEST(Publish, LeavesOutWhatFitsIntoNoSignal) {
  TestService service("a rw {}\nb rw {}\nc rw {}\n");
  const std::string value(MAX_MESSAGE_BYTES - 7, 'x');  // with "b=", length and end: all of it
  store(service.database(), {{"a", "1"}, {"b", value}, {"c", "3"}});
  publish(service.object(), service.database(), {"a", "b", "c"});
  EXPECT_TRUE(service.newSignals() == (Signals{{"a=1"}, {"b=" + value}, {"c=3"}}));

  store(service.database(), {{"b", value + "x"}});
  publish(service.object(), service.database(), {"a", "b", "c"});
  EXPECT_TRUE(service.newSignals() == (Signals{{"a=1", "c=3"}}));
}

}  // namespace
