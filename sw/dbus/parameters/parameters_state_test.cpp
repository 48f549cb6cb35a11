#include "sw/dbus/parameters/parameters_state.h"

#include "sw/dbus/reply.h"
#include "tests/support/parameters.h"

namespace {

// What the connection sends; dbus_connection_send() is at the end of this file.
struct {
  std::vector<std::string> signals;  // "destination path member arguments"
  int failingSends = 0;
} bus;

using Signals = std::vector<std::string>;

// c follows a, and so does d by way of its index; b is read by nobody. hidden is announced to none.
constexpr std::string_view TEXT =
    "a rw { rangeValid { 0..9 } }\n"
    "b rw { }\n"
    "c rw { rangeValid { 0..(a) } }\n"
    "hidden rostrict { default { (a) } }\n"
    "i index { rangeValid { 1..(a) } }\n"
    "d rw { index { i } rangeValid { 0..(hidden) } }\n"
    "e rw { rangeValid { 0..(d[1]) } }\n";

class ParametersStateTest : public testing::Test {
 protected:
  void SetUp() override { bus = {}; }
  void watch(std::string_view client, bool changes, bool limits) {
    device_.state().watchers().set(client, {.changes = changes, .limits = limits});
  }
  // The signals of a commit of `values` by the client :1.1.
  Signals commit(const std::vector<std::pair<std::string, std::string>>& values) {
    device_.commit(":1.1", values);
    EXPECT_EQ(bus.signals, Signals{});
    return sentAtTheEnd();
  }
  // The signals that wait for the end of the call.
  Signals sentAtTheEnd() {
    device_.service().state().finishCall();
    return std::exchange(bus.signals, {});
  }
  ParametersState& state() { return device_.state(); }
  ParmEntry* parm(const char* name) { return state().service().database().findParm(name); }

 private:
  TestParameters device_{TEXT};
};

TEST_F(ParametersStateTest, TellsEachWatcherWhatItWants) {
  const std::string changed = " /parameters Changed 1, \":1.1\", [(\"b\", \"\", \"1\")]";
  watch(":1.2", true, false);
  EXPECT_EQ(commit({{"b", "1"}}), Signals{":1.2" + changed});
  const std::string second =
      " /parameters Changed 2, \":1.1\", [(\"a\", \"\", \"5\"), (\"b\", \"1\", \"2\"), "
      "(\"c\", \"\", \"\"), (\"e\", \"\", \"\")]";  // told once, as their first values
  const std::string limits = " /parameters LimitsChanged 2, [\"c\", \"d\", \"hidden\"]";
  watch(":1.3", true, true);
  watch(":1.4", false, true);
  Signals sent = commit({{"a", "5"}, {"b", "2"}});
  std::ranges::sort(sent);
  EXPECT_EQ(sent, (Signals{":1.2" + second, ":1.3" + second, ":1.3" + limits, ":1.4" + limits}));
  EXPECT_EQ(commit({{"b", "3"}}).size(), 2U);  // nothing reads b
}

TEST_F(ParametersStateTest, CountsAndKeepsWhatNobodyWatches) {
  EXPECT_EQ(commit({{"a", "5"}}), Signals{});
  EXPECT_EQ(commit({{"a", "5"}}), Signals{});  // which changes nothing
  EXPECT_EQ(state().commits(), 1U);
  ASSERT_EQ(state().history().commits().size(), 1U);
  EXPECT_EQ(state().history().commits().front().caller, ":1.1");
  const auto now = static_cast<uint64_t>(g_get_real_time());
  for (const uint64_t time : {state().started(), state().history().commits().front().time}) {
    EXPECT_LE(time, now);
    EXPECT_GT(time, now - 60'000'000);
  }
  watch(":1.2", true, true);
  state().clientLeft(":1.2");
  EXPECT_EQ(commit({{"a", "6"}}), Signals{});
  EXPECT_EQ(state().commits(), 2U);
}

// It is in no Changed and no history, but what reads it may have other limits.
TEST_F(ParametersStateTest, TellsOfLimitsAloneWhereOnlyUnreportedValuesMove) {
  watch(":1.2", true, true);
  const auto commitUnreported = [&](const char* name) {
    CommitRecord record;
    record.makeRoomForUnreported();
    record.addUnreported(*parm(name));
    state().committed(":1.1", {}, std::move(record));
  };
  commitUnreported("hidden");
  EXPECT_EQ(sentAtTheEnd(), Signals{":1.2 /parameters LimitsChanged 1, [\"d\"]"});
  commitUnreported("b");
  EXPECT_EQ(sentAtTheEnd(), Signals{});
  EXPECT_EQ(state().history().commits().size(), 0U);
  EXPECT_EQ(state().commits(), 2U);
}

// A byte that is no UTF-8 takes three, so each counts for so many.
TEST_F(ParametersStateTest, SplitsWhatIsTooLongForOneSignal) {
  watch(":1.2", true, false);
  const std::string large(MAX_MESSAGE_BYTES / 5, 'x');
  const CommittedValue none{};
  using Names = std::vector<std::pair<const char*, std::string>>;
  const auto commit = [&](const Names& changed) {
    std::vector<Change> changes;
    CommitRecord record;
    for (const auto& [name, before] : changed) {
      record.makeRoom(before);
      changes.push_back({name, &none, parm("b"), record.add(before)});
    }
    state().committed(":1.1", std::move(changes), std::move(record));
    return sentAtTheEnd();
  };
  const std::string start = ":1.2 /parameters Changed 1, \":1.1\", [(\"";
  const Signals sent = commit({{"a", "1"}, {"b", large}, {"c", large}, {"e", "2"}});
  ASSERT_EQ(sent.size(), 2U);
  EXPECT_EQ(sent[0], start + "a\", \"1\", \"\"), (\"b\", \"" + large + "\", \"\")]");
  EXPECT_EQ(sent[1], start + "c\", \"" + large + "\", \"\"), (\"e\", \"2\", \"\")]");
  // One that fits into none is tried alone, and ends the telling.
  const std::string tooLarge(MAX_MESSAGE_BYTES, 'x');
  EXPECT_EQ(commit({{"a", "1"}, {"b", tooLarge}, {"c", "2"}}).size(), 1U);
}

TEST_F(ParametersStateTest, OutlivesSignalsThatCannotBeSent) {
  watch(":1.2", true, true);
  bus.failingSends = 1;
  EXPECT_EQ(commit({{"a", "5"}}), Signals{});
  EXPECT_EQ(state().history().commits().size(), 1U);
  EXPECT_EQ(commit({{"b", "5"}}),
            Signals{":1.2 /parameters Changed 2, \":1.1\", [(\"b\", \"\", \"5\")]"});
}

}  // namespace

// In the place of the library's own.
extern "C" dbus_bool_t dbus_connection_send(DBusConnection* /*connection*/, DBusMessage* message,
                                            dbus_uint32_t* /*serial*/) {
  if (bus.failingSends > 0) return --bus.failingSends, FALSE;
  EXPECT_STREQ(dbus_message_get_interface(message), "org.tavrel.parameters1");
  bus.signals.push_back(std::string(dbus_message_get_destination(message)) + " " +
                        dbus_message_get_path(message) + " " + dbus_message_get_member(message) +
                        " " + argumentsOf(message));
  return TRUE;
}
