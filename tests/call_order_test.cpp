// In which order calls are served: those of one client in theirs, those of several in turns. The id
// that start() gives tells how many calls with an id were served before.
#include <unistd.h>

#include <csignal>
#include <fstream>

#include "tests/harness/deaf_client.h"
#include "tests/harness/service_test.h"

namespace {

constexpr int INSTANCES = 100000;

class PeakMemoryTest : public ServiceTest {
 protected:
  using ServiceTest::ServiceTest;
  // The most memory that the daemon has had since then.
  void forgetPeak() {
    std::ofstream("/proc/" + std::to_string(daemon().process().pid()) + "/clear_refs") << 5;
  }
  size_t peakMemory() { return memoryOf(daemon().process().pid(), "VmHWM:"); }
};

class CallOrderTest : public ServiceTest {
 protected:
  // A call that sets `limit` looks at all instances of `follower`, which takes a thousand times as
  // long as one that reads a value.
  void SetUp() override {
    serve(
        "limit rw { rangeValid { 0..9 } default { 5 } }\n"
        "place index { rangeValid { 1..100000 } }\n"
        "follower rw { index { place } rangeValid { 0..(limit) } default { 0 } }\n"
        "note rw { }\n");
    std::string names = "'limit'";
    for (int i = 1; i <= INSTANCES; ++i) names += ",'follower[" + std::to_string(i) + "]'";
    ASSERT_EQ(client().answer("single_reset_bulk([" + names + "])"), "()");
  }
  void TearDown() override {
    static_cast<void>(client().newSignals());
    ServiceTest::TearDown();
  }

  static void sendLongCalls(Client& to, int count) {
    for (int i = 0; i < count; ++i) {
      to.send("single_set('limit', '" + std::to_string(i % 10) + "')");
    }
  }
  static void expectDone(Client& of, size_t count) {
    EXPECT_EQ(of.collectAnswers(), std::vector<std::string>(count, "()"));
  }
  static long idOf(const std::string& answer) { return std::stol(answer); }
  long nextId() { return idOf(client().answer("start()")) + 1; }
  Client& other() { return other_; }

 private:
  Client other_{bus().address()};
};

void callWithoutReply(const Client& client, const char* method, GVariant* arguments) {
  g_dbus_connection_call(client.connection(), INTERFACE_NAME, OBJECT_PATH, INTERFACE_NAME, method,
                         arguments, nullptr, G_DBUS_CALL_FLAGS_NO_AUTO_START, -1, nullptr, nullptr,
                         nullptr);
}

// Leaves the bus when it has what was sent.
void leave(Client& client) {
  EXPECT_NE(g_dbus_connection_flush_sync(client.connection(), nullptr, nullptr), FALSE);
  EXPECT_NE(g_dbus_connection_close_sync(client.connection(), nullptr, nullptr), FALSE);
  static_cast<void>(client.collectAnswers());  // that the connection is closed
}

TEST_F(CallOrderTest, ABacklogOfOneKeepsAnotherWaitingForOneCall) {
  constexpr int BACKLOG = 40;
  const long first = nextId();
  pause();
  sendLongCalls(client(), BACKLOG);
  waitForBus(client());
  other().send("start()");
  other().send("start()");
  waitForBus(other());
  resume();
  const std::vector<std::string> ids = other().collectAnswers();
  EXPECT_LE(idOf(ids[0]), first + 1);
  EXPECT_LE(idOf(ids[1]), first + 3);
  expectDone(client(), BACKLOG);
}

// On a busy machine the other client may be late itself, and the backlog goes on meanwhile. So it
// has a few tries.
TEST_F(CallOrderTest, WhoCallsDuringABacklogWaitsForTheCallThatIsBeingServed) {
  constexpr int BACKLOG = 40;
  // Ten turns, with two calls of the backlog in each at the most.
  constexpr long MOST = 32;
  long used = MOST + 1;
  for (int tries = 0; tries < 5 && used > MOST; ++tries) {
    const long first = nextId();
    sendLongCalls(client(), BACKLOG);
    waitForBus(client());
    for (int i = 0; i < 10; ++i) static_cast<void>(other().answer("start()"));
    used = idOf(other().answer("start()")) - first;
    expectDone(client(), BACKLOG);
  }
  EXPECT_LE(used, MOST);
}

TEST_F(CallOrderTest, TheCallsOfEachKeepTheirOrder) {
  std::vector<std::unique_ptr<Client>> clients;
  pause();
  for (int number = 0; number < 10; ++number) {
    clients.push_back(std::make_unique<Client>(bus().address()));
    Client& one = *clients.back();
    sendLongCalls(one, 1);
    for (int i = 0; i < 20; ++i) one.send("start()");
    waitForBus(one);
  }
  resume();
  for (const auto& one : clients) {
    const std::vector<std::string> answers = one->collectAnswers();
    EXPECT_EQ(answers[0], "()");
    for (size_t i = 2; i < answers.size(); ++i) {
      // The others had their turn in between.
      EXPECT_GT(idOf(answers[i]), idOf(answers[i - 1])) << i;
    }
  }
}

TEST_F(CallOrderTest, WhatIsBehindTheCallsThatAreTakenAheadWaitsForTheRest) {
  constexpr long TAKEN = 4096;
  constexpr long BACKLOG = 6000;
  const long first = nextId();
  pause();
  for (int i = 0; i < BACKLOG; ++i) client().send("start()");
  waitForBus(client());
  other().send("start()");
  waitForBus(other());
  resume();
  const long id = idOf(other().collectAnswers()[0]);
  EXPECT_GE(id, first + BACKLOG - TAKEN);
  EXPECT_LE(id, first + BACKLOG);
  EXPECT_EQ(client().collectAnswers().size(), BACKLOG);
}

TEST_F(CallOrderTest, CallsOfOneThatHasLeftAreDropped) {
  auto leaving = std::make_unique<Client>(bus().address());
  sendLongCalls(*leaving, 10);
  leaving->send("single_set('note', 'late')");
  leave(*leaving);
  // The backlog would have its turns meanwhile.
  for (int i = 0; i < 20; ++i) EXPECT_EQ(client().answer("single_set('limit', '5')"), "()");
  EXPECT_EQ(client().answer("single_get('note')"), "''");
}

TEST_F(CallOrderTest, WhoLeavesAtOnceIsServedAllTheSame) {
  for (int i = 0; i < 100; ++i) {
    const std::string value = std::to_string(i);
    auto leaving = std::make_unique<Client>(bus().address());
    if (i % 2 == 0) {
      leaving->send("single_set('note', '" + value + "')");
    } else {
      // Without a wish for a reply it may be several calls.
      callWithoutReply(*leaving, "single_set", g_variant_new("(ss)", "note", "first"));
      callWithoutReply(*leaving, "single_set", g_variant_new("(ss)", "note", value.c_str()));
    }
    leave(*leaving);
    leaving.reset();
    // In its turn: of two calls the second may be served behind this client's.
    std::string answer;
    const gint64 deadline = g_get_monotonic_time() + PATIENCE * G_TIME_SPAN_SECOND;
    do {
      answer = client().answer("single_get('note')");
    } while (answer != "'" + value + "'" && g_get_monotonic_time() < deadline);
    ASSERT_EQ(answer, "'" + value + "'");
  }
}

TEST_F(CallOrderTest, OnlyTheBusKnowsWhoHasLeft) {
  pause();
  sendLongCalls(client(), 5);
  waitForBus(client());
  const char* name = g_dbus_connection_get_unique_name(client().connection());
  GError* error = nullptr;
  EXPECT_NE(
      g_dbus_connection_emit_signal(other().connection(), INTERFACE_NAME, "/org/freedesktop/DBus",
                                    "org.freedesktop.DBus", "NameOwnerChanged",
                                    g_variant_new("(sss)", name, name, ""), &error),
      FALSE);
  waitForBus(other());
  resume();
  expectDone(client(), 5);
}

TEST_F(CallOrderTest, WhatCameBeforeDieIsAnsweredAndWhatCameBehindIsNot) {
  pause();
  sendLongCalls(client(), 5);
  waitForBus(client());
  other().send("die()");
  waitForBus(other());
  client().send("single_set('note', 'late')");
  client().send("single_get('limit')");
  waitForBus(client());
  resume();
  const std::vector<std::string> answers = client().collectAnswers();
  for (size_t i = 0; i < 5; ++i) EXPECT_EQ(answers[i], "()") << i;
  for (size_t i = 5; i < answers.size(); ++i) {
    EXPECT_TRUE(answers[i].starts_with("org.freedesktop.DBus.Error.NoReply")) << answers[i];
  }
  EXPECT_EQ(other().collectAnswers(), std::vector<std::string>{"()"});
  const Ending ending = daemon().waitForEnd();
  EXPECT_EQ(ending.status, 1);
  EXPECT_EQ(ending.err, "");
  forgetDaemon();
}

// A call whose answer is the error's name, or "" for a reply.
class ForeignCall {
 public:
  ForeignCall(const Client& client, const char* interface, const char* method,
              GVariant* arguments) {
    g_dbus_connection_call(client.connection(), INTERFACE_NAME, OBJECT_PATH, interface, method,
                           arguments, nullptr, G_DBUS_CALL_FLAGS_NO_AUTO_START, PATIENCE * 1000,
                           nullptr, &ForeignCall::onReply, this);
  }
  std::string answer() {
    while (!isDone_) g_main_context_iteration(nullptr, TRUE);
    return answer_;
  }

 private:
  static void onReply(GObject* connection, GAsyncResult* result, gpointer self) {
    auto* call = static_cast<ForeignCall*>(self);
    GError* error = nullptr;
    GVariant* reply = g_dbus_connection_call_finish(G_DBUS_CONNECTION(connection), result, &error);
    if (error != nullptr) {
      gchar* name = g_dbus_error_get_remote_error(error);
      call->answer_ = name == nullptr ? error->message : name;
      g_free(name);
      g_error_free(error);
    } else {
      g_variant_unref(reply);
    }
    call->isDone_ = true;
  }

  bool isDone_ = false;
  std::string answer_;
};

TEST_F(CallOrderTest, WhatIsNoneOfTheMethodsIsAnsweredInItsTurn) {
  pause();
  sendLongCalls(client(), 2);
  ForeignCall unknown(client(), INTERFACE_NAME, "no_such_method", nullptr);
  ForeignCall unknownArguments(client(), INTERFACE_NAME, "start", g_variant_new("(s)", "x"));
  ForeignCall introspection(client(), "org.freedesktop.DBus.Introspectable", "Introspect", nullptr);
  ForeignCall properties(client(), "org.freedesktop.DBus.Properties", "GetAll",
                         g_variant_new("(s)", ""));
  client().send("start()");
  waitForBus(client());
  resume();
  EXPECT_EQ(client().collectAnswers().size(), 3U);
  EXPECT_EQ(unknown.answer(), "org.freedesktop.DBus.Error.UnknownMethod");
  EXPECT_EQ(unknownArguments.answer(), "org.freedesktop.DBus.Error.UnknownMethod");
  EXPECT_EQ(introspection.answer(), "");
  EXPECT_EQ(properties.answer(), "");
}

using CallMemoryTest = PeakMemoryTest;

TEST_F(CallMemoryTest, WhatIsTakenAheadHasBounds) {
  serve("note rw { }");
  struct BurstCase {
    const char* what;
    int calls;
    size_t bytes;   // of each call's value
    size_t growth;  // of the memory, in KiB
  };
  const BurstCase cases[] = {
      {"many", 100000, 1, size_t{8} << 10U},
      {"large", 100, size_t{1} << 20U, size_t{32} << 10U},
  };
  for (const BurstCase& c : cases) {
    SCOPED_TRACE(c.what);
    forgetPeak();
    const size_t before = peakMemory();
    const std::string value(c.bytes, 'x');
    pause();
    for (int i = 0; i < c.calls; ++i) {
      callWithoutReply(client(), "single_is_valid", g_variant_new("(ss)", "note", value.c_str()));
    }
    waitForBus(client());
    resume();
    EXPECT_EQ(client().answer("single_get('note')"), "''");
    const size_t peak = peakMemory();
    RecordProperty(c.what, std::to_string(peak - before));
    EXPECT_LT(isWatched() ? 0 : peak, before + c.growth);
  }
}

// A bus that takes no more from the daemon while so many bytes of it are not delivered.
class NarrowBusTest : public PeakMemoryTest {
 protected:
  NarrowBusTest() : PeakMemoryTest({.limits = {{"max_incoming_bytes", 4000000}}}) {}
};

TEST_F(NarrowBusTest, NothingIsServedWhileTheBusTakesNoReplies) {
  constexpr int CALLS = 300;
  constexpr size_t ALLOWED = size_t{32 + 8}
                             << 10U;  // in KiB: what may be unsent, and some messages
  serve("note rw { }");
  const std::string mebibyte(size_t{1} << 20U, 'x');
  const Reply set = client().call("single_set", g_variant_new("(ss)", "note", mebibyte.c_str()));
  ASSERT_NE(set.value, nullptr) << set.errorMessage;
  forgetPeak();
  const size_t before = peakMemory();
  Client other(bus().address());
  {
    DeafClient deaf(bus().address());
    for (int i = 0; i < CALLS; ++i) deaf.send("single_get", "note");
    waitForBus(client());
    other.send("single_set('note', '1')");
    // Long enough for all of them.
    for (int i = 0; i < 20; ++i) usleep(50000);
    EXPECT_LT(isWatched() ? 0 : peakMemory(), before + ALLOWED);
  }
  // The deaf one has gone.
  EXPECT_EQ(other.collectAnswers(), std::vector<std::string>{"()"});
  EXPECT_EQ(client().answer("single_get('note')"), "'1'");
  static_cast<void>(client().newSignals());
  static_cast<void>(other.newSignals());
}

}  // namespace
