#include "sw/dbus/call_server.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <string>
#include <vector>

#include "sw/dbus/bus_memory.h"
#include "sw/dbus/exported_object.h"
#include "tests/support/allocations.h"

namespace {

// The connection: what is read from it, and what it does. The functions of the bus library for
// connections are at the end of this file.
struct FakeConnection {
  std::deque<DBusMessage*> socket;   // not yet read
  std::deque<DBusMessage*> arrived;  // to be dispatched
  std::vector<std::string> sent;     // the kinds, or the texts of errors
  std::vector<std::string> served;   // the methods, in their order
  std::vector<int> waits;            // of each reading, in milliseconds
  DBusHandleMessageFunction filter = nullptr;
  void* filterData = nullptr;
  CallServer* server = nullptr;
  std::string ending;   // the method that ends the main loop
  std::string unknown;  // the method that nobody serves
  std::string longest;  // the method that takes a millisecond
  long unsent = 0;
  long sentByReading = 0;  // so much less is unsent after each
  int failingSends = 0;
  bool isConnected = true;
  bool isRunning = true;  // the main loop
  bool finds = true;      // memory for the next message
  bool isShort = false;
  gint64 now = 0;
};

FakeConnection bus;

DBusMessage* callOf(const std::string& method, const char* sender = ":1.1") {
  DBusMessage* call = dbus_message_new_method_call(nullptr, "/", "a.b", method.c_str());
  if (sender != nullptr) dbus_message_set_sender(call, sender);
  dbus_message_set_serial(call, 1);
  return call;
}

DBusMessage* signalOf(const char* interface, const char* name, const char* sender) {
  DBusMessage* signal = dbus_message_new_signal("/org/freedesktop/DBus", interface, name);
  if (sender != nullptr) dbus_message_set_sender(signal, sender);
  return signal;
}

DBusMessage* departureOf(const char* client, const char* newOwner = "",
                         const char* sender = DBUS_SERVICE_DBUS) {
  DBusMessage* signal = signalOf(DBUS_INTERFACE_DBUS, "NameOwnerChanged", sender);
  dbus_message_append_args(signal, DBUS_TYPE_STRING, &client, DBUS_TYPE_STRING, &client,
                           DBUS_TYPE_STRING, &newOwner, DBUS_TYPE_INVALID);
  return signal;
}

using Names = std::vector<std::string>;

class CallServerTest : public testing::Test {
 protected:
  void SetUp() override {
    bus = FakeConnection();
    state_.createMainLoop();
    server_ = std::make_unique<CallServer>(nullptr, state_);
    bus.server = server_.get();
    bus.sent.clear();
  }
  void TearDown() override {
    server_.reset();
    EXPECT_EQ(bus.filter, nullptr);
    for (auto* messages : {&bus.socket, &bus.arrived}) {
      for (DBusMessage* message : *messages) dbus_message_unref(message);
    }
  }
  CallServer& server() { return *server_; }

  // What the main loop does until it would wait.
  static void run() {
    while (bus.isRunning && g_main_context_iteration(nullptr, FALSE) != FALSE) {
    }
  }
  static Names manyNames(size_t count) {
    Names names;
    for (size_t i = 0; i < count; ++i) names.push_back("m" + std::to_string(i));
    return names;
  }
  static void arrive(const Names& methods) {
    for (const std::string& method : methods) bus.arrived.push_back(callOf(method));
  }

 private:
  Database database_;
  ServiceState state_{database_};
  std::unique_ptr<CallServer> server_;
};

TEST_F(CallServerTest, ServesACallThatNothingWaitsBehindAsItComes) {
  arrive({"one"});
  EXPECT_EQ(dbus_connection_dispatch(nullptr), DBUS_DISPATCH_COMPLETE);
  EXPECT_EQ(bus.served, Names{"one"});
}

TEST_F(CallServerTest, LeavesTheAnswerToACallThatNobodyServesToTheBusLibrary) {
  bus.unknown = "none";
  DBusMessage* call = callOf("none");
  EXPECT_EQ(server().take(call, serveExported), DBUS_HANDLER_RESULT_NOT_YET_HANDLED);
  dbus_message_unref(call);
  EXPECT_EQ(bus.sent, Names{});
}

TEST_F(CallServerTest, AnswersACallThatWaitedAndThatNobodyServes) {
  bus.unknown = "none";
  bus.failingSends = 1;
  arrive({"one", "none", "two"});
  run();
  EXPECT_EQ(bus.served, (Names{"one", "none", "two"}));
  EXPECT_EQ(bus.sent, Names{"Method \"none\" with signature \"\" on interface \"a.b\" doesn't "
                            "exist\n"});
}

TEST_F(CallServerTest, AnswersACallWithoutAnInterfaceThatNobodyServes) {
  bus.unknown = "none";
  arrive({"one", "none", "two"});
  dbus_message_set_interface(bus.arrived[1], nullptr);
  run();
  EXPECT_EQ(bus.sent, Names{"Method \"none\" with signature \"\" on interface \"(null)\" doesn't "
                            "exist\n"});
}

TEST_F(CallServerTest, ServesCallsWithoutASender) {
  bus.arrived = {callOf("one", nullptr), callOf("two", nullptr), callOf("three", ":1.1")};
  run();
  EXPECT_EQ(bus.served, (Names{"one", "three", "two"}));
}

TEST_F(CallServerTest, ServesAtMostAMillisecondBeforeItLooksForMessages) {
  arrive({"one", "long", "two"});
  while (!bus.arrived.empty()) dbus_connection_dispatch(nullptr);
  bus.longest = "long";
  g_main_context_iteration(nullptr, FALSE);
  EXPECT_EQ(bus.served, (Names{"one", "long"}));
  g_main_context_iteration(nullptr, FALSE);
  EXPECT_EQ(bus.served, (Names{"one", "long", "two"}));
}

TEST_F(CallServerTest, TakesNoMoreThanSoManyAhead) {
  const Names names = manyNames(CallServer::MAX_TAKEN + 2);
  arrive(names);
  while (bus.served.empty()) dbus_connection_dispatch(nullptr);
  EXPECT_EQ(bus.arrived.size(), 1U);
  EXPECT_EQ(bus.served, Names{"m0"});
  run();
  EXPECT_EQ(bus.served, names);
}

TEST_F(CallServerTest, TakesMoreAheadRatherThanServeWhatCannotBeSent) {
  const Names names = manyNames(CallServer::MAX_TAKEN + 2);
  bus.unsent = CallServer::MAX_UNSENT_BYTES + 1;
  arrive(names);
  while (!bus.arrived.empty()) dbus_connection_dispatch(nullptr);
  EXPECT_EQ(bus.served, Names{});
  bus.unsent = 0;
  run();
  EXPECT_EQ(bus.served, names);
}

TEST_F(CallServerTest, ServesACallThatFindsNoMemoryToWaitBehindTheOthers) {
  arrive({"one", "two", "three"});
  dbus_connection_dispatch(nullptr);
  Allocations::left = 0;  // until a call is served
  dbus_connection_dispatch(nullptr);
  EXPECT_EQ(bus.served, (Names{"one", "two"}));
}

TEST_F(CallServerTest, ServesNothingWhileTooMuchIsNotSent) {
  bus.unsent = CallServer::MAX_UNSENT_BYTES + 1;
  for (const char* method : {"one", "two"}) {
    arrive({method});
    run();
  }
  EXPECT_EQ(bus.served, Names{});
  bus.unsent = CallServer::MAX_UNSENT_BYTES;
  run();
  EXPECT_EQ(bus.served, (Names{"one", "two"}));
}

TEST_F(CallServerTest, ServesWhatWaitsWhileAMessageFindsNoMemory) {
  arrive({"one", "two", "three"});
  dbus_connection_dispatch(nullptr);
  dbus_connection_dispatch(nullptr);
  bus.finds = false;
  run();
  EXPECT_EQ(bus.served, (Names{"one", "two"}));
  bus.finds = true;
  run();
  EXPECT_EQ(bus.served, (Names{"one", "two", "three"}));
}

TEST_F(CallServerTest, DropsTheCallsOfOneThatHasLeft) {
  struct DepartureCase {
    const char* what;
    DBusMessage* signal;
    Names served;
  };
  const DepartureCase cases[] = {
      {"left", departureOf(":1.1"), {"one", "three"}},
      {"another", departureOf(":1.3"), {"one", "three", "two"}},
      {"a new owner", departureOf(":1.1", ":1.9"), {"one", "three", "two"}},
      {"a client says so", departureOf(":1.1", "", ":1.2"), {"one", "three", "two"}},
      {"without names",
       signalOf(DBUS_INTERFACE_DBUS, "NameOwnerChanged", DBUS_SERVICE_DBUS),
       {"one", "three", "two"}},
      {"another signal",
       signalOf(DBUS_INTERFACE_DBUS, "NameLost", DBUS_SERVICE_DBUS),
       {"one", "three", "two"}},
  };
  for (const DepartureCase& c : cases) {
    SCOPED_TRACE(c.what);
    bus.served.clear();
    bus.arrived = {callOf("one"), callOf("two"), callOf("three", ":1.2"), c.signal};
    run();
    EXPECT_EQ(bus.served, c.served);
  }
}

TEST_F(CallServerTest, EndsWithTheConnection) {
  arrive({"one", "two"});
  bus.arrived.push_back(signalOf(DBUS_INTERFACE_LOCAL, "Disconnected", ":1.1"));
  run();
  EXPECT_EQ(bus.served, (Names{"one", "two"}));  // a client has said so
  arrive({"three"});
  bus.arrived.push_back(signalOf(DBUS_INTERFACE_LOCAL, "Disconnected", nullptr));
  arrive({"four"});
  run();
  EXPECT_FALSE(bus.isRunning);
  server().serveEarlier();
  DBusMessage* call = callOf("five");
  EXPECT_EQ(server().take(call, serveExported), DBUS_HANDLER_RESULT_HANDLED);
  dbus_message_unref(call);
  EXPECT_EQ(bus.served, (Names{"one", "two"}));
}

TEST_F(CallServerTest, ServesWhatCameBeforeTheCallThatEndsIt) {
  bus.ending = "die";
  arrive({"one", "two"});
  bus.arrived.push_back(callOf("die", ":1.3"));
  arrive({"behind"});
  run();
  EXPECT_EQ(bus.served, (Names{"one", "die"}));
  server().serveEarlier();
  EXPECT_EQ(bus.served, (Names{"one", "die", "two"}));
}

TEST_F(CallServerTest, TakesWhatHasComeInWhenASignalEndsIt) {
  for (const std::string& name : manyNames(CallServer::MAX_TAKEN + 5)) {
    bus.socket.push_back(callOf(name));
  }
  server().end();
  EXPECT_FALSE(bus.isRunning);
  server().serveEarlier();
  EXPECT_EQ(bus.served, manyNames(CallServer::MAX_TAKEN));
  EXPECT_EQ(bus.waits, std::vector<int>{0});
}

TEST_F(CallServerTest, TakesNothingAfterTheCallThatEndsIt) {
  bus.ending = "die";
  arrive({"die"});
  dbus_connection_dispatch(nullptr);
  bus.socket.push_back(callOf("late"));
  server().end();
  EXPECT_EQ(bus.waits, std::vector<int>{});
  EXPECT_EQ(bus.socket.size(), 1U);
}

class EndingCallServerTest : public CallServerTest {
 protected:
  void SetUp() override {
    CallServerTest::SetUp();
    bus.unsent = CallServer::MAX_UNSENT_BYTES + 3;
    bus.socket = {callOf("one"), callOf("two")};
    server().end();
    bus.waits.clear();
  }
};

TEST_F(EndingCallServerTest, WaitsTwoSecondsForTheBusToTakeReplies) {
  server().serveEarlier();
  EXPECT_EQ(bus.waits, std::vector<int>(201, 10));
  EXPECT_EQ(bus.served, Names{});
}

TEST_F(EndingCallServerTest, ServesAsTheBusTakesReplies) {
  bus.sentByReading = 1;
  server().serveEarlier();
  EXPECT_EQ(bus.waits, std::vector<int>(3, 10));
  EXPECT_EQ(bus.served, (Names{"one", "two"}));
}

TEST_F(EndingCallServerTest, DoesNotWaitForABusThatHasGone) {
  bus.isConnected = false;
  server().serveEarlier();
  EXPECT_EQ(bus.waits, std::vector<int>(1, 10));
  EXPECT_EQ(bus.served, Names{});
}

TEST(CallServer, FailsWithoutMemoryToWatchForClientsThatLeave) {
  bus = FakeConnection();
  Database database;
  ServiceState state(database);
  bus.failingSends = 1;
  EXPECT_THROW(CallServer(nullptr, state), std::bad_alloc);
}

}  // namespace

DBusHandlerResult serveExported(DBusConnection* /*connection*/, DBusMessage* call) {
  Allocations::left = SIZE_MAX;
  const std::string method = dbus_message_get_member(call);
  bus.served.push_back(method);
  if (method == bus.longest) bus.now += G_TIME_SPAN_MILLISECOND;
  if (method == bus.ending) bus.isRunning = false;
  return method == bus.unknown ? DBUS_HANDLER_RESULT_NOT_YET_HANDLED : DBUS_HANDLER_RESULT_HANDLED;
}

bool isBusShortOfMemory() { return bus.isShort; }
void noteMessage() { bus.isShort = false; }

// In the place of the library's own.
extern "C" {

void dbus_connection_set_max_received_size(DBusConnection* /*connection*/, long size) {
  EXPECT_EQ(size, CallServer::MAX_TAKEN_BYTES);
}

dbus_bool_t dbus_connection_add_filter(DBusConnection* /*connection*/,
                                       DBusHandleMessageFunction filter, void* data,
                                       DBusFreeFunction /*free*/) {
  bus.filter = filter;
  bus.filterData = data;
  return TRUE;
}

void dbus_connection_remove_filter(DBusConnection* /*connection*/, DBusHandleMessageFunction filter,
                                   void* data) {
  EXPECT_EQ(filter, bus.filter);
  EXPECT_EQ(data, bus.filterData);
  bus.filter = nullptr;
}

dbus_bool_t dbus_connection_send(DBusConnection* /*connection*/, DBusMessage* message,
                                 dbus_uint32_t* /*serial*/) {
  if (bus.failingSends > 0) return --bus.failingSends, FALSE;
  const char* text = dbus_message_get_member(message);
  dbus_message_get_args(message, nullptr, DBUS_TYPE_STRING, &text, DBUS_TYPE_INVALID);
  bus.sent.emplace_back(text);
  return TRUE;
}

long dbus_connection_get_outgoing_size(DBusConnection* /*connection*/) { return bus.unsent; }

DBusDispatchStatus dbus_connection_get_dispatch_status(DBusConnection* /*connection*/) {
  if (!bus.finds) {
    bus.isShort = true;
    return DBUS_DISPATCH_NEED_MEMORY;
  }
  return bus.arrived.empty() ? DBUS_DISPATCH_COMPLETE : DBUS_DISPATCH_DATA_REMAINS;
}

DBusDispatchStatus dbus_connection_dispatch(DBusConnection* connection) {
  if (bus.arrived.empty() || !bus.finds) return dbus_connection_get_dispatch_status(connection);
  DBusMessage* message = bus.arrived.front();
  bus.arrived.pop_front();
  EXPECT_EQ(bus.filter(connection, message, bus.filterData), DBUS_HANDLER_RESULT_NOT_YET_HANDLED);
  if (dbus_message_get_type(message) == DBUS_MESSAGE_TYPE_METHOD_CALL) {
    EXPECT_EQ(bus.server->take(message, serveExported), DBUS_HANDLER_RESULT_HANDLED);
  }
  dbus_message_unref(message);
  return dbus_connection_get_dispatch_status(connection);
}

dbus_bool_t dbus_connection_read_write(DBusConnection* /*connection*/, int wait) {
  bus.waits.push_back(wait);
  bus.now += wait * gint64{1000};
  bus.unsent -= bus.sentByReading;
  bus.arrived.insert(bus.arrived.end(), bus.socket.begin(), bus.socket.end());
  bus.socket.clear();
  return bus.isConnected ? TRUE : FALSE;
}

gint64 g_get_monotonic_time() { return bus.now; }
gboolean g_main_loop_is_running(GMainLoop* /*loop*/) { return bus.isRunning ? TRUE : FALSE; }
void g_main_loop_quit(GMainLoop* /*loop*/) { bus.isRunning = false; }
}
