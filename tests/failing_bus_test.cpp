// The bus fails: it says nothing, closes or talks nonsense at each step of the start, or it goes
// while the service runs. The daemon tells why and ends with status 1; it neither hangs nor aborts.
#include <gio/gio.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstring>
#include <functional>
#include <memory>
#include <thread>

#include "tests/harness/deaf_client.h"
#include "tests/harness/service_test.h"

namespace {

// Takes connections to an address, one after the other.
class Listener {
 public:
  // `serve` is called in a thread and is given each connection, which it closes.
  explicit Listener(std::function<void(int)> serve)
      : listening_(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_un name = {.sun_family = AF_UNIX, .sun_path = {}};
    strncpy(name.sun_path, path().c_str(), sizeof name.sun_path - 1);
    EXPECT_EQ(bind(listening_, reinterpret_cast<sockaddr*>(&name), sizeof name), 0);
    EXPECT_EQ(listen(listening_, 1), 0);
    thread_ = std::thread([listening = listening_, serve = std::move(serve)] {
      int connection = -1;
      while ((connection = accept4(listening, nullptr, nullptr, SOCK_CLOEXEC)) >= 0) {
        serve(connection);
      }
    });
  }
  ~Listener() {
    shutdown(listening_, SHUT_RDWR);
    thread_.join();
    close(listening_);
  }
  Listener(const Listener&) = delete;
  Listener& operator=(const Listener&) = delete;

  [[nodiscard]] std::string address() const { return "unix:path=" + path(); }

 private:
  [[nodiscard]] std::string path() const { return directory_.path() + "/bus"; }

  TempDir directory_;
  int listening_;
  std::thread thread_;
};

// Says a few words to each client, and then nothing for as long as the client stays, or the end.
class OddSocket {
 public:
  OddSocket(std::string words, bool closes)
      : listener_([words = std::move(words), closes](int connection) {
          // A client that has gone already does not hear it.
          static_cast<void>(send(connection, words.data(), words.size(), MSG_NOSIGNAL));
          std::array<char, 4096> heard{};
          while (!closes && recv(connection, heard.data(), heard.size(), 0) > 0) {
          }
          close(connection);
        }) {}

  [[nodiscard]] std::string address() const { return listener_.address(); }

 private:
  Listener listener_;
};

// What a bus does with a call.
enum Failure { SILENCE, CLOSE, REFUSAL, WRONG_ANSWER };

// A bus that answers its clients up to a certain call.
class FailingBus {
 public:
  FailingBus(std::string failingMethod, Failure failure)
      : failingMethod_(std::move(failingMethod)),
        failure_(failure),
        listener_([this](int connection) { serve(connection); }) {}
  ~FailingBus() {
    for (GDBusConnection* connection : connections_) {
      g_dbus_connection_close_sync(connection, nullptr, nullptr);
      g_object_unref(connection);
    }
  }
  FailingBus(const FailingBus&) = delete;
  FailingBus& operator=(const FailingBus&) = delete;

  [[nodiscard]] std::string address() const { return listener_.address(); }

 private:
  void serve(int descriptor) {
    GSocket* socket = g_socket_new_from_fd(descriptor, nullptr);
    GSocketConnection* stream = g_socket_connection_factory_create_connection(socket);
    gchar* guid = g_dbus_generate_guid();
    constexpr auto FLAGS =
        static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_SERVER |
                                          G_DBUS_CONNECTION_FLAGS_DELAY_MESSAGE_PROCESSING);
    GDBusConnection* connection =
        g_dbus_connection_new_sync(G_IO_STREAM(stream), guid, FLAGS, nullptr, nullptr, nullptr);
    if (connection != nullptr) {
      connections_.push_back(connection);
      g_dbus_connection_add_filter(connection, &FailingBus::onMessage, this, nullptr);
      g_dbus_connection_start_message_processing(connection);
    }
    g_free(guid);
    g_object_unref(stream);
    g_object_unref(socket);
  }

  // Called in a thread of the library.
  static GDBusMessage* onMessage(GDBusConnection* connection, GDBusMessage* message,
                                 gboolean incoming, gpointer self) {
    if (incoming == FALSE) return message;
    GDBusMessage* reply = static_cast<FailingBus*>(self)->replyTo(connection, message);
    if (reply != nullptr) {
      g_dbus_message_set_sender(reply, "org.freedesktop.DBus");
      g_dbus_connection_send_message(connection, reply, G_DBUS_SEND_MESSAGE_FLAGS_NONE, nullptr,
                                     nullptr);
      g_object_unref(reply);
    }
    g_object_unref(message);
    return nullptr;
  }

  GDBusMessage* replyTo(GDBusConnection* connection, GDBusMessage* call) const {
    const std::string method = g_dbus_message_get_member(call);
    if (method == failingMethod_ && failure_ == SILENCE) return nullptr;
    if (method == failingMethod_ && failure_ == CLOSE) {
      g_dbus_connection_close(connection, nullptr, nullptr, nullptr);
      return nullptr;
    }
    if (method == failingMethod_ && failure_ == REFUSAL) {
      return g_dbus_message_new_method_error_literal(call, "org.tavrel.Error", "not today");
    }
    GDBusMessage* reply = g_dbus_message_new_method_reply(call);
    if (method == failingMethod_) {
      g_dbus_message_set_body(reply, g_variant_new("(b)", TRUE));
    } else if (method == "Hello") {
      g_dbus_message_set_body(reply, g_variant_new("(s)", ":1.1"));
    }
    return reply;
  }

  std::string failingMethod_;
  Failure failure_;
  std::vector<GDBusConnection*> connections_;
  Listener listener_;  // the last one, so that its thread ends first
};

constexpr const char* START =
    "Parsing file.\nMaking parameter definitions.\n"
    "Transaction server:main Connecting to the Session D-Bus.\n";
constexpr const char* START_TO_NAME =
    "Parsing file.\nMaking parameter definitions.\n"
    "Transaction server:main Connecting to the Session D-Bus.\n"
    "Transaction server:main Registering the well-known name (org.tavrel.transaction)\n";

std::string noConnection(const std::string& why) {
  return "Transaction server: ERROR: Couldn\xe2\x80\x99t connect to session bus (" + why + ")\n";
}
std::string noName(const std::string& why) {
  return "Transaction server: ERROR: D-Bus. RequestName RPC failed (" + why + ")\n";
}

constexpr const char* NO_REPLY =
    "Did not receive a reply. Possible causes include: the remote application did not send a "
    "reply, the message bus security policy blocked the reply, the reply timeout expired, or the "
    "network connection was broken.";
constexpr const char* ACCEPTED = "OK 0123456789abcdef0123456789abcdef\r\n";

// A daemon that will wait for a silent bus has a faster clock.
std::unique_ptr<Daemon> startedOn(const std::string& address, bool isSilent) {
  return std::make_unique<Daemon>(
      Daemon::Options{.busAddress = address, .preload = isSilent ? FAST_CLOCK_LIBRARY : ""});
}

struct SocketCase {
  std::string words;
  bool closes;
  std::string report;
};

// All at once, because some wait for a long time.
TEST(BusFailure, OfASocketThatIsNoBusIsReported) {
  const std::string silent = "The bus does not answer";
  const SocketCase cases[] = {
      {"", true, NO_REPLY},
      {"", false, silent},
      {"REJECTED\r\n", true, NO_REPLY},
      {"REJECTED\r\n", false, NO_REPLY},
      {ACCEPTED, true, NO_REPLY},
      {ACCEPTED, false, NO_REPLY},  // the first call has a limit of its own
      {"OK nonsense\r\n", false, NO_REPLY},
      {"HTTP/1.1 400 Bad Request\r\n\r\n", true, NO_REPLY},
      {"HTTP/1.1 400 Bad Request\r\n\r\n", false, silent},
      {std::string(1000000, 'x'), false, NO_REPLY},
      {std::string(1000, '\0'), false, silent},
      {std::string(ACCEPTED) + "ERROR\r\n" + std::string(1000, 'l'), false, NO_REPLY},
  };
  std::vector<std::unique_ptr<OddSocket>> sockets;
  std::vector<std::unique_ptr<Daemon>> daemons;
  for (const SocketCase& c : cases) {
    sockets.push_back(std::make_unique<OddSocket>(c.words, c.closes));
    daemons.push_back(startedOn(sockets.back()->address(), !c.closes));
  }
  for (size_t i = 0; i < daemons.size(); ++i) {
    SCOPED_TRACE(cases[i].words.substr(0, 40) + (cases[i].closes ? ", closed" : ""));
    const Ending ending = daemons[i]->waitForEnd();
    EXPECT_EQ(ending.status, 1);
    EXPECT_EQ(ending.out, START);
    EXPECT_EQ(ending.err, noConnection(cases[i].report));
  }
}

struct CallCase {
  const char* method;
  Failure failure;
  std::string out;
  std::string err;
};

TEST(BusFailure, AtEachCallOfTheStartIsReported) {
  const std::string wrongAnswer =
      "Argument 0 is specified to be of type \"string\", but is actually of type \"boolean\"\n";
  const CallCase cases[] = {
      {"Hello", SILENCE, START, noConnection(NO_REPLY)},
      {"Hello", CLOSE, START, noConnection(NO_REPLY)},
      {"Hello", REFUSAL, START, noConnection("not today")},
      {"Hello", WRONG_ANSWER, START, noConnection(wrongAnswer)},
      {"RequestName", SILENCE, START_TO_NAME, noName(NO_REPLY)},
      {"RequestName", CLOSE, START_TO_NAME,
       noName("Connection was disconnected before a reply was received")},
      {"RequestName", REFUSAL, START_TO_NAME, noName("not today")},
      {"RequestName", WRONG_ANSWER, START_TO_NAME,
       noName("Expected type guint, got type code 'b'")},
  };
  std::vector<std::unique_ptr<FailingBus>> buses;
  std::vector<std::unique_ptr<Daemon>> daemons;
  for (const CallCase& c : cases) {
    buses.push_back(std::make_unique<FailingBus>(c.method, c.failure));
    daemons.push_back(startedOn(buses.back()->address(), c.failure == SILENCE));
  }
  for (size_t i = 0; i < daemons.size(); ++i) {
    SCOPED_TRACE(std::string(cases[i].method) + " " + std::to_string(cases[i].failure));
    const Ending ending = daemons[i]->waitForEnd();
    EXPECT_EQ(ending.status, 1);
    EXPECT_EQ(ending.out, cases[i].out);
    EXPECT_EQ(ending.err, cases[i].err);
  }
}

constexpr const char* LOGGED_LOSS = "Lost the connection to the session bus";
constexpr const char* LOSS =
    "Transaction server: ERROR: Lost the connection to the session bus "
    "(The bus has ended, or has closed it)\n";

class RunningServiceTest : public ServiceTest {
 protected:
  void SetUp() override {
    serve(
        "place index { rangeValid { 1..100000 } }\n"
        "wide rw { index { place } rangeValid { 0..9 } default { 3 } }\n"
        "note rw { }\n");
  }
  // It says once why it ends.
  void expectEnd() {
    const Ending ending = daemon().waitForEnd();
    EXPECT_EQ(ending.status, 1);
    EXPECT_EQ(ending.err, LOSS);
    EXPECT_EQ(daemon().newLogLines(), std::vector<std::string>{LOGGED_LOSS});
    forgetDaemon();
  }
};

TEST_F(RunningServiceTest, EndsWithTheBusAtRest) {
  EXPECT_EQ(client().answer("start()"), "0");
  bus().stop();
  expectEnd();
}

TEST_F(RunningServiceTest, EndsWithTheBusWhileCallsWait) {
  pause();
  DeafClient deaf(bus().address());
  for (int i = 0; i < 1000; ++i) deaf.send("single_get", "note");
  bus().stop();
  resume();
  expectEnd();
}

TEST_F(RunningServiceTest, EndsWithTheBusInTheMiddleOfACommit) {
  std::string names;
  for (int i = 1; i <= 100000; ++i) names += "'wide[" + std::to_string(i) + "]',";
  names.pop_back();
  client().send("single_reset_bulk([" + names + "])");
  g_dbus_connection_flush_sync(client().connection(), nullptr, nullptr);
  waitForWork(daemon().process().pid());
  bus().stop();
  expectEnd();
  static_cast<void>(client().collectAnswers());  // that the connection is closed
}

TEST_F(RunningServiceTest, EndsWithTheBusWhileRepliesAreOnTheirWay) {
  const std::string mebibyte(size_t{1} << 20U, 'x');
  const Reply set = client().call("single_set", g_variant_new("(ss)", "note", mebibyte.c_str()));
  ASSERT_NE(set.value, nullptr) << set.errorMessage;
  DeafClient deaf(bus().address());
  for (int i = 0; i < 100; ++i) deaf.send("single_get", "note");
  bus().stop();
  expectEnd();
}

TEST_F(RunningServiceTest, WaitsForABusThatStandsStill) {
  ASSERT_EQ(kill(bus().pid(), SIGSTOP), 0);
  for (int i = 0; i < 1000; ++i) client().send("single_set('note', '" + std::to_string(i) + "')");
  usleep(100000);
  EXPECT_TRUE(daemon().process().running());
  ASSERT_EQ(kill(bus().pid(), SIGCONT), 0);
  for (const std::string& answer : client().collectAnswers()) EXPECT_EQ(answer, "()");
  EXPECT_EQ(client().answer("single_get('note')"), "'999'");
}

TEST(DetachedService, EndsWithTheBus) {
  // The detached process becomes a child of the test when its parent ends.
  ASSERT_EQ(prctl(PR_SET_CHILD_SUBREAPER, 1), 0);
  PrivateBus bus;
  Daemon started({.arguments = {}, .busAddress = bus.address()});
  EXPECT_EQ(started.waitForEnd().status, 0);
  const pid_t pid = childBesides(bus.pid());
  ASSERT_GT(pid, 0);
  bus.stop();
  int status = 0;
  ASSERT_EQ(waitpid(pid, &status, 0), pid);
  EXPECT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 1);
  EXPECT_EQ(started.newLogLines(), std::vector<std::string>{LOGGED_LOSS});
}

}  // namespace
