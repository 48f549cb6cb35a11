// The service's start: its name and path on the bus, its messages, detaching, and its end.
#include <sched.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>

#include "tests/harness/deaf_client.h"
#include "tests/harness/service_test.h"

namespace {

constexpr const char* READING = "Parsing file.\nMaking parameter definitions.\n";
constexpr const char* CONNECTING = "Transaction server:main Connecting to the Session D-Bus.\n";

std::string messagesUpToName(const std::string& name) {
  return std::string(READING) + CONNECTING +
         "Transaction server:main Registering the well-known name (" + name + ")\n";
}

std::string messagesOfStart(const std::string& name, const std::string& path) {
  return messagesUpToName(name) +
         "Transaction server:main RequestName returned 1.\n"
         "Transaction server:main Creating one \"" +
         path +
         "\" object.\n"
         "Transaction server:main Registering it on the D-Bus.\n"
         "Transaction server:main Ready to serve requests (daemonizing).\n";
}

constexpr const char* STAYING = "Transaction server: Not daemonizing\n";

struct SuffixCase {
  std::vector<std::string> arguments;
  const char* name;
  const char* path;
};

TEST(ServiceStart, SuffixesAreAppendedToNameAndPath) {
  const SuffixCase cases[] = {
      {{"--debug"}, "org.tavrel.transaction", "/transaction"},
      {{"-d", "--bus="}, "org.tavrel.transaction", "/transaction"},
      {{"-d", "--obj_path="}, "org.tavrel.transaction", "/transaction"},
      {{"-d", "-b", "x"}, "org.tavrel.transaction.x", "/transaction"},
      {{"-d", "--bus", "a.b"}, "org.tavrel.transaction.a.b", "/transaction"},
      {{"-d", "-o", "y"}, "org.tavrel.transaction", "/transaction/y"},
      {{"-d", "--obj_path=x/y_1"}, "org.tavrel.transaction", "/transaction/x/y_1"},
      {{"-b", "one", "-d", "k=1", "-b", "two", "-o", "1", "-o", "2"},  // the last one counts
       "org.tavrel.transaction.two",
       "/transaction/2"},
  };
  const PrivateBus bus;
  for (const SuffixCase& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.arguments));
    Client client(bus.address());
    client.setTarget(c.name, c.path);
    Daemon daemon({.arguments = c.arguments, .busAddress = bus.address()});
    ASSERT_TRUE(client.waitForService(daemon.process()));
    EXPECT_EQ(client.answer("start()"), "0");
    EXPECT_EQ(client.answer("die()"), "()");
    const Ending ending = daemon.waitForEnd();
    EXPECT_EQ(ending.status, 1);
    EXPECT_EQ(ending.out, messagesOfStart(c.name, c.path) + STAYING);
    EXPECT_EQ(ending.err, "");
  }
}

class ServiceStartTest : public ServiceTest {
 protected:
  Ending run(const std::vector<std::string>& arguments) {
    Daemon another({.arguments = arguments, .busAddress = bus().address()});
    return another.waitForEnd();
  }
};

TEST_F(ServiceStartTest, ASecondServiceOfTheNameEndsAndLeavesTheFirst) {
  serve("a rw { }");
  const Ending ending = run({"--debug"});
  EXPECT_EQ(ending.status, 1);
  EXPECT_EQ(ending.out, messagesUpToName("org.tavrel.transaction") +
                            "Transaction server:main RequestName returned 2.\n");
  EXPECT_EQ(ending.err,
            "Transaction server: ERROR: Failed to get the primary well-known name. "
            "(RequestName result != 1)\n");
  expectFacts({{"single_set('a', '1')", "()", {"a=1"}}});
}

TEST_F(ServiceStartTest, ServicesOfDifferentNamesLiveSideBySide) {
  serve("a rw { }");
  Client second(bus().address());
  second.setTarget("org.tavrel.transaction.second", OBJECT_PATH);
  Daemon another({.text = "b rw { }",
                  .arguments = {"--debug", "--bus=second"},
                  .busAddress = bus().address()});
  ASSERT_TRUE(second.waitForService(another.process()));
  EXPECT_EQ(second.answer("single_set('b', '2')"), "()");
  EXPECT_EQ(second.answer("single_get('a')"), "''");
  EXPECT_EQ(second.answer("die()"), "()");
  EXPECT_EQ(another.waitForEnd().status, 1);
  EXPECT_EQ(client().newSignals(), std::vector<std::vector<std::string>>({{"b=2"}}));
  expectFacts({{"single_get('b')", "''"}});
}

TEST(ServiceStart, WithoutABusTheReportIsTheSameInEveryLocale) {
  for (const char* locale : {"C", "C.UTF-8", "POSIX"}) {
    SCOPED_TRACE(locale);
    Daemon daemon(
        {.busAddress = "unix:path=/nonexistent/bus", .environment = {{"LC_ALL", locale}}});
    const Ending ending = daemon.waitForEnd();
    EXPECT_EQ(ending.status, 1);
    EXPECT_EQ(ending.out, std::string(READING) + CONNECTING);
    EXPECT_EQ(ending.err,
              "Transaction server: ERROR: Couldn\xe2\x80\x99t connect to session bus "
              "(Failed to connect to socket /nonexistent/bus: No such file or directory)\n");
  }
}

TEST(ServiceStart, AnAddressThatIsNoneIsReported) {
  Daemon daemon({.busAddress = "nonsense"});
  const Ending ending = daemon.waitForEnd();
  EXPECT_EQ(ending.status, 1);
  EXPECT_TRUE(ending.err.starts_with(
      "Transaction server: ERROR: Couldn\xe2\x80\x99t connect to session bus ("))
      << ending.err;
}

struct InvalidSuffixCase {
  std::string suffix;
  std::string report;
};

// Counts how often a name of the service's gets an owner, or loses it, while it lives.
class NameWatch {
 public:
  explicit NameWatch(const Client& client)
      : connection_(client.connection()),
        subscription_(g_dbus_connection_signal_subscribe(
            connection_, "org.freedesktop.DBus", "org.freedesktop.DBus", "NameOwnerChanged",
            nullptr, INTERFACE_NAME, G_DBUS_SIGNAL_FLAGS_MATCH_ARG0_NAMESPACE, &NameWatch::onChange,
            this, nullptr)) {}
  ~NameWatch() { g_dbus_connection_signal_unsubscribe(connection_, subscription_); }
  NameWatch(const NameWatch&) = delete;
  NameWatch& operator=(const NameWatch&) = delete;

  [[nodiscard]] int changes() const { return changes_; }

 private:
  static void onChange(GDBusConnection* /*connection*/, const gchar* /*sender*/,
                       const gchar* /*path*/, const gchar* /*interface*/, const gchar* /*signal*/,
                       GVariant* /*parameters*/, gpointer self) {
    ++static_cast<NameWatch*>(self)->changes_;
  }

  GDBusConnection* connection_;
  int changes_ = 0;
  guint subscription_;
};

TEST_F(ServiceStartTest, ANameIsOwnedOnlyByAServiceWhoseNameAndPathAreValid) {
  const NameWatch watch(client());
  for (const char* argument : {"-o/", "-oa b", "-oa-b", "-o\xe9", "-b.", "-b1", "-b\xe9"}) {
    SCOPED_TRACE(argument);
    EXPECT_EQ(run({"--debug", argument}).status, 1);
  }
  // What the bus has told about them comes before what it tells about this one.
  serve("");
  static_cast<void>(client().newSignals());
  EXPECT_EQ(watch.changes(), 1);
}

TEST_F(ServiceStartTest, ASuffixThatMakesNoValidNameEndsTheStart) {
  const std::string failed = "D-Bus. RequestName RPC failed ";
  const std::string tooLong(233, 'x');  // one character more than a name may have
  // The bus itself refuses what can be asked of it.
  const InvalidSuffixCase cases[] = {
      {".", failed + "(Requested bus name \"org.tavrel.transaction..\" is not valid)"},
      {"a..b", failed + "(Requested bus name \"org.tavrel.transaction.a..b\" is not valid)"},
      {"a.", failed + "(Requested bus name \"org.tavrel.transaction.a.\" is not valid)"},
      {"1", failed + "(Requested bus name \"org.tavrel.transaction.1\" is not valid)"},
      {"a b", failed + "(Requested bus name \"org.tavrel.transaction.a b\" is not valid)"},
      {"a/b", failed + "(Requested bus name \"org.tavrel.transaction.a/b\" is not valid)"},
      {"\xc3\xa9",
       failed + "(Requested bus name \"org.tavrel.transaction.\xc3\xa9\" is not valid)"},
      {tooLong,
       failed + "(Requested bus name \"org.tavrel.transaction." + tooLong + "\" is not valid)"},
      {"\xe9", "Invalid bus name (String was not valid UTF-8)"},
  };
  for (const InvalidSuffixCase& c : cases) {
    SCOPED_TRACE(c.suffix);
    const Ending ending = run({"--debug", "--bus=" + c.suffix});
    EXPECT_EQ(ending.status, 1);
    EXPECT_EQ(ending.out, messagesUpToName("org.tavrel.transaction." + c.suffix));
    EXPECT_EQ(ending.err, "Transaction server: ERROR: " + c.report + "\n");
  }
}

TEST_F(ServiceStartTest, ASuffixThatMakesNoValidPathEndsTheStart) {
  const InvalidSuffixCase cases[] = {
      {"/", "Object path was not valid: '/transaction//'"},
      {"a/", "Object path was not valid: '/transaction/a/'"},
      {"a//b", "Object path was not valid: '/transaction/a//b'"},
      {"a b", "Object path was not valid: '/transaction/a b'"},
      {"a-b", "Object path was not valid: '/transaction/a-b'"},
      {"a.b", "Object path was not valid: '/transaction/a.b'"},
      {"\xc3\xa9", "Object path was not valid: '/transaction/\xc3\xa9'"},
      {"\xe9", "Object path was not valid UTF-8"},
  };
  for (const InvalidSuffixCase& c : cases) {
    SCOPED_TRACE(c.suffix);
    const Ending ending = run({"--debug", "-o" + c.suffix});
    EXPECT_EQ(ending.status, 1);
    EXPECT_EQ(ending.out, std::string(READING) + CONNECTING);
    EXPECT_EQ(ending.err, "Transaction server: ERROR: Invalid object path (" + c.report + ")\n");
  }
}

TEST(ServiceStart, ABusThatDeniesTheNameEndsTheStart) {
  const PrivateBus bus({.allowsNames = false});
  Daemon daemon({.busAddress = bus.address()});
  const Ending ending = daemon.waitForEnd();
  EXPECT_EQ(ending.status, 1);
  EXPECT_EQ(ending.out, messagesUpToName("org.tavrel.transaction"));
  const std::string begin =
      "Transaction server: ERROR: D-Bus. RequestName RPC failed (Connection \":";
  EXPECT_TRUE(ending.err.starts_with(begin)) << ending.err;  // the connection's number follows
  EXPECT_TRUE(
      ending.err.ends_with("\" is not allowed to own the service "
                           "\"org.tavrel.transaction\" due to security policies in the "
                           "configuration file)\n"))
      << ending.err;
}

TEST_F(ServiceStartTest, TheLongestNameIsServed) {
  // 255 characters are allowed in all.
  const std::string suffix(232, 'x');
  client().setTarget("org.tavrel.transaction." + suffix, OBJECT_PATH);
  Daemon daemon({.arguments = {"--debug", "--bus=" + suffix}, .busAddress = bus().address()});
  ASSERT_TRUE(client().waitForService(daemon.process()));
  EXPECT_EQ(client().answer("start()"), "0");
  EXPECT_EQ(client().answer("die()"), "()");
}

std::string linkTarget(pid_t pid, const std::string& entry) {
  return std::filesystem::read_symlink("/proc/" + std::to_string(pid) + "/" + entry);
}

class DetachedTest : public ServiceTest, public testing::WithParamInterface<bool> {
 protected:
  // The detached process becomes a child of the test when its parent ends.
  void SetUp() override { ASSERT_EQ(prctl(PR_SET_CHILD_SUBREAPER, 1), 0); }
};

TEST_P(DetachedTest, TheProgramReturnsAndTheServiceGoesOn) {
  Daemon started({.text = "a rw { }",
                  .arguments = {},
                  .busAddress = bus().address(),
                  .outputToPipe = GetParam()});
  const Ending ending = started.waitForEnd();
  EXPECT_EQ(ending.status, 0);
  EXPECT_EQ(ending.out, messagesOfStart("org.tavrel.transaction", "/transaction"));
  EXPECT_EQ(ending.err, "");

  EXPECT_EQ(client().answer("single_set('a', '1')"), "()");
  const pid_t pid = childBesides(bus().pid());
  ASSERT_GT(pid, 0);
  EXPECT_EQ(linkTarget(pid, "cwd"), "/");
  for (const char* stream : {"fd/0", "fd/1", "fd/2"}) {
    EXPECT_EQ(linkTarget(pid, stream), "/dev/null") << stream;
  }

  EXPECT_EQ(client().answer("die()"), "()");
  int status = 0;
  ASSERT_EQ(waitpid(pid, &status, 0), pid);
  EXPECT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 1);
}

INSTANTIATE_TEST_SUITE_P(WithOutputTo, DetachedTest, testing::Bool(),
                         [](const testing::TestParamInfo<bool>& output) {
                           return output.param ? "Pipe" : "File";
                         });

TEST_F(ServiceStartTest, InTheForegroundStreamsAndDirectoryStay) {
  serve("");
  expectFacts({{"start()", "0"}});  // past the place where it would detach
  const pid_t pid = daemon().process().pid();
  EXPECT_EQ(linkTarget(pid, "cwd"), std::filesystem::current_path());
  for (const char* stream : {"fd/0", "fd/1", "fd/2"}) {
    // The files in memory that the test gives the daemon as its streams.
    EXPECT_TRUE(linkTarget(pid, stream).starts_with("/memfd:stream")) << linkTarget(pid, stream);
  }
}

// With output streams closed by whoever starts the daemon.
class ClosedStreamsTest : public ServiceTest, public testing::WithParamInterface<const char*> {
 protected:
  void SetUp() override { ASSERT_EQ(prctl(PR_SET_CHILD_SUBREAPER, 1), 0); }

  // It serves, at rest, and the streams that were closed are the null device; detached, all are.
  void expectService(pid_t pid, bool isDetached) {
    EXPECT_EQ(client().answer("start()"), "0");  // now it has done with detaching
    for (int stream : {0, 1, 2}) {
      const bool isClosed =
          std::string(GetParam()).find(std::to_string(stream) + ">&-") != std::string::npos;
      const std::string target = linkTarget(pid, "fd/" + std::to_string(stream));
      EXPECT_EQ(target == "/dev/null", isClosed || isDetached) << stream << ": " << target;
    }
    const long before = workedTicks(pid);
    usleep(300000);
    EXPECT_LE(workedTicks(pid) - before, sysconf(_SC_CLK_TCK) / 10);  // a third of the time
    EXPECT_EQ(client().answer("die()"), "()");
  }
};

TEST_P(ClosedStreamsTest, AreTheNullDeviceInTheForeground) {
  Daemon daemon({.busAddress = bus().address(), .redirections = GetParam()});
  ASSERT_TRUE(client().waitForService(daemon.process()));
  expectService(daemon.process().pid(), false);
  EXPECT_EQ(daemon.waitForEnd().status, 1);
}

TEST_P(ClosedStreamsTest, DoNotKeepTheServiceFromDetaching) {
  Daemon started({.arguments = {}, .busAddress = bus().address(), .redirections = GetParam()});
  EXPECT_EQ(started.waitForEnd().status, 0);
  const pid_t pid = childBesides(bus().pid());
  ASSERT_GT(pid, 0);
  expectService(pid, true);
  int status = 0;
  ASSERT_EQ(waitpid(pid, &status, 0), pid);
  EXPECT_EQ(WEXITSTATUS(status), 1);
}

INSTANTIATE_TEST_SUITE_P(AnyOfThem, ClosedStreamsTest, testing::Values("1>&-", "2>&-", "1>&- 2>&-"),
                         [](const testing::TestParamInfo<const char*>& redirections) {
                           return "Set" + std::to_string(redirections.index);
                         });

class ServiceEndTest : public ServiceTest {};

TEST_F(ServiceEndTest, DieIsAnsweredAndNothingMoreIsPrinted) {
  serve("");
  EXPECT_EQ(client().answer("die()"), "()");
  const Ending ending = daemon().waitForEnd();
  EXPECT_EQ(ending.status, 1);
  EXPECT_EQ(ending.out, messagesOfStart("org.tavrel.transaction", "/transaction") + STAYING);
  EXPECT_EQ(ending.err, "");
  forgetDaemon();
}

TEST_F(ServiceEndTest, CallsBehindDieComeBack) {
  serve("a rw { }");
  client().send("single_set('a', '1')");
  client().send("die()");
  for (int i = 0; i < 20; ++i) client().send("single_get('a')");
  client().send("die()");
  const std::vector<std::string> answers = client().collectAnswers();
  EXPECT_EQ(answers[0], "()");
  EXPECT_EQ(answers[1], "()");
  for (size_t i = 2; i < answers.size(); ++i) {
    // Either the call was served on the way out, or the bus tells that nobody will.
    EXPECT_TRUE(answers[i] == "'1'" || answers[i] == "()" ||
                answers[i].starts_with("org.freedesktop.DBus.Error."))
        << answers[i];
    EXPECT_EQ(answers[i].find("Timeout"), std::string::npos) << answers[i];
  }
  EXPECT_EQ(daemon().waitForEnd().status, 1);
  forgetDaemon();
}

TEST_F(ServiceEndTest, LargeRepliesOnTheirWayArriveBeforeTheEnd) {
  serve("a rw { }");
  const std::string megabyte(1 << 20, 'x');
  const Reply set = client().call("single_set", g_variant_new("(ss)", "a", megabyte.c_str()));
  ASSERT_NE(set.value, nullptr) << set.errorMessage;
  for (int i = 0; i < 30; ++i) client().send("single_get('a')");
  client().send("die()");
  const std::vector<std::string> answers = client().collectAnswers();
  for (size_t i = 0; i + 1 < answers.size(); ++i) {
    EXPECT_EQ(answers[i].size(), megabyte.size() + 2) << answers[i].substr(0, 80);  // in quotes
  }
  EXPECT_EQ(answers.back(), "()");
  EXPECT_EQ(daemon().waitForEnd().status, 1);
  forgetDaemon();
}

// A bus that takes no more from a client while this many bytes are not delivered.
class NarrowBusTest : public ServiceTest {
 protected:
  static constexpr size_t BYTES = 2000000;
  NarrowBusTest() : ServiceTest({.limits = {{"max_incoming_bytes", BYTES}}}) {}
};

TEST_F(NarrowBusTest, RepliesThatNobodyReadsDoNotKeepTheServiceFromEnding) {
  serve("a rw { }");
  const std::string value(BYTES / 2, 'x');
  const Reply set = client().call("single_set", g_variant_new("(ss)", "a", value.c_str()));
  ASSERT_NE(set.value, nullptr) << set.errorMessage;
  DeafClient deaf(bus().address());
  for (int i = 0; i < 20; ++i) deaf.send("single_get", "a");
  deaf.send("die");
  const Ending ending = daemon().waitForEnd();
  EXPECT_EQ(ending.status, 1);
  EXPECT_EQ(ending.err, "");
  forgetDaemon();
}

TEST_F(ServiceEndTest, OpenTransactionsDoNotKeepTheServiceFromEnding) {
  serve("a rw { rangeValid { 0..9 } }");
  expectFacts({{"start()", "0"}, {"set(0, 'a', '5')", "()"}, {"start()", "1"}});
}

class EndSignalTest : public ServiceTest, public testing::WithParamInterface<int> {
 protected:
  void SetUp() override { ASSERT_EQ(prctl(PR_SET_CHILD_SUBREAPER, 1), 0); }
  void endAndResume() {
    waitForBus(client());
    ASSERT_EQ(kill(daemon().process().pid(), GetParam()), 0);
    resume();
  }
  void expectEnd() {
    const Ending ending = daemon().waitForEnd();
    EXPECT_EQ(ending.status, 1);
    EXPECT_EQ(ending.out, messagesOfStart("org.tavrel.transaction", "/transaction") + STAYING);
    EXPECT_EQ(ending.err, "");
    EXPECT_EQ(daemon().newLogLines(), std::vector<std::string>());
    forgetDaemon();
  }
};

TEST_P(EndSignalTest, EndsAServiceAtRest) {
  serve("a rw { }");
  EXPECT_EQ(memoryOf(daemon().process().pid(), "Threads:"), 1U);
  ASSERT_EQ(kill(daemon().process().pid(), GetParam()), 0);
  expectEnd();
}

TEST_P(EndSignalTest, WhatHasComeInIsAnsweredBefore) {
  serve("a rw { }");
  const std::string megabyte(1 << 20, 'x');
  const Reply set = client().call("single_set", g_variant_new("(ss)", "a", megabyte.c_str()));
  ASSERT_NE(set.value, nullptr) << set.errorMessage;
  pause();
  for (int i = 0; i < 30; ++i) client().send("single_get('a')");
  client().send("single_set('a', '1')");
  // No more than the socket holds: what is still with the bus has not come in.
  for (int i = 0; i < 100; ++i) client().send("single_get('a')");
  endAndResume();
  const std::vector<std::string> answers = client().collectAnswers();
  for (size_t i = 0; i < 30; ++i) EXPECT_EQ(answers[i].size(), megabyte.size() + 2) << i;
  EXPECT_EQ(answers[30], "()");
  for (size_t i = 31; i < answers.size(); ++i) EXPECT_EQ(answers[i], "'1'") << i;
  expectEnd();
}

TEST_P(EndSignalTest, TheSecondDoesNotWait) {
  serve("place index { rangeValid { 1..100000 } }\nwide rw { index { place } default { 3 } }\n");
  std::string names;
  for (int i = 1; i <= 100000; ++i) names += "'wide[" + std::to_string(i) + "]',";
  names.pop_back();
  pause();  // so that all is still to be done when the signals come
  for (int i = 0; i < 10; ++i) client().send("single_reset_bulk([" + names + "])");
  g_dbus_connection_flush_sync(client().connection(), nullptr, nullptr);
  resume();
  waitForWork(daemon().process().pid());
  while (daemon().process().running()) {
    kill(daemon().process().pid(), GetParam());
    sched_yield();  // whoever sleeps on a busy machine may wake up when all is answered
  }
  EXPECT_EQ(daemon().waitForEnd().status, -GetParam());
  static_cast<void>(client().collectAnswers());  // that there is no service any more
  forgetDaemon();
}

TEST_P(EndSignalTest, EndsADetachedService) {
  Daemon started({.text = "a rw { }", .arguments = {}, .busAddress = bus().address()});
  EXPECT_EQ(started.waitForEnd().status, 0);
  EXPECT_EQ(client().answer("single_set('a', '1')"), "()");
  const pid_t pid = childBesides(bus().pid());
  ASSERT_GT(pid, 0);
  EXPECT_EQ(memoryOf(pid, "Threads:"), 1U);
  ASSERT_EQ(kill(pid, GetParam()), 0);
  int status = 0;
  ASSERT_EQ(waitpid(pid, &status, 0), pid);
  EXPECT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 1);
}

INSTANTIATE_TEST_SUITE_P(Any, EndSignalTest, testing::Values(SIGTERM, SIGINT, SIGHUP),
                         [](const testing::TestParamInfo<int>& signal) {
                           return "Signal" + std::to_string(signal.param);
                         });

}  // namespace
