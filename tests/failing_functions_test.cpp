// A library function fails as its page says that it can: the start ends with a report, or the
// service does without.
#include <csignal>

#include "tests/harness/service_test.h"

namespace {

class FailingFunctionTest : public ServiceTest {
 protected:
  Daemon startWithout(const std::string& function, Daemon::Options options) {
    options.busAddress = bus().address();
    options.environment = {{"FAILING_FUNCTION", function}};
    options.preload = FAILING_FUNCTION_LIBRARY;
    return Daemon(options);
  }
};

TEST_F(FailingFunctionTest, OfTheStartIsReported) {
  struct Case {
    const char* function;
    const char* lastLine;  // of standard output
    const char* report;
  };
  const Case cases[] = {
      {"g_main_loop_new", "Making parameter definitions.\n",
       "Couldn\xe2\x80\x99t create GMainLoop (Unknown (OOM ?))"},
      {"g_try_new0", "Making parameter definitions.\n",
       "Couldn\xe2\x80\x99t initialize server methods (Unknown (OOM ?))"},
      {"dbus_g_proxy_new_for_name",
       "Transaction server:main Registering the well-known name (org.tavrel.transaction)\n",
       "Failed to get a proxy for D-Bus (Unknown(dbus_g_proxy_new_for_name))"},
      {"g_object_new", "Transaction server:main Creating one \"/transaction\" object.\n",
       "Failed to create one Value instance. (Unknown (OOM ?))"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.function);
    Daemon daemon = startWithout(c.function, {});
    const Ending ending = daemon.waitForEnd();
    EXPECT_EQ(ending.status, 1);
    EXPECT_TRUE(ending.out.ends_with(c.lastLine)) << ending.out;
    EXPECT_EQ(ending.err, "Transaction server: ERROR: " + std::string(c.report) + "\n");
  }
}

TEST_F(FailingFunctionTest, ThatDetachesAbortsTheProcess) {
  Daemon daemon = startWithout("daemon", {.arguments = {}});
  const Ending ending = daemon.waitForEnd();
  EXPECT_EQ(ending.status, -SIGTRAP);  // as the log function aborts
  EXPECT_TRUE(
      ending.out.ends_with("Transaction server:main Ready to serve requests (daemonizing).\n"))
      << ending.out;
  EXPECT_NE(ending.err.find(" ERROR **: "), std::string::npos) << ending.err;
  EXPECT_NE(ending.err.find(": Transaction server: Failed to daemonize.\n"), std::string::npos)
      << ending.err;
}

// Then they end the process as they do by themselves.
TEST_F(FailingFunctionTest, ThatSignalsAreTakenByLeavesThemAsTheyAre) {
  Daemon daemon = startWithout("eventfd", {});
  ASSERT_TRUE(client().waitForService(daemon.process()));
  EXPECT_EQ(client().answer("start()"), "0");
  ASSERT_EQ(kill(daemon.process().pid(), SIGTERM), 0);
  EXPECT_EQ(daemon.waitForEnd().status, -SIGTERM);
}

TEST_F(FailingFunctionTest, ThatSignalsAreTakenByDoesNotKeepDieFromEnding) {
  Daemon daemon = startWithout("eventfd", {});
  ASSERT_TRUE(client().waitForService(daemon.process()));
  EXPECT_EQ(client().answer("die()"), "()");
  EXPECT_EQ(daemon.waitForEnd().status, 1);
}

// Whether the bus has read the reply to die is not known then.
TEST_F(FailingFunctionTest, ThatLooksAtTheSocketDoesNotKeepDieFromEnding) {
  for (const char* function : {"dbus_connection_get_unix_fd", "ioctl"}) {
    SCOPED_TRACE(function);
    Daemon daemon = startWithout(function, {});
    ASSERT_TRUE(client().waitForService(daemon.process()));
    static_cast<void>(client().answer("die()"));
    EXPECT_EQ(daemon.waitForEnd().status, 1);
  }
}

TEST_F(FailingFunctionTest, ThatOpensTheNullDeviceLeavesAStreamClosed) {
  Daemon daemon = startWithout("open", {.redirections = "2<&-"});
  ASSERT_TRUE(client().waitForService(daemon.process()));
  EXPECT_EQ(client().answer("start()"), "0");
  EXPECT_EQ(client().answer("die()"), "()");
  EXPECT_EQ(daemon.waitForEnd().status, 1);
}

}  // namespace
