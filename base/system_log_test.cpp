#include "base/system_log.h"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/un.h>
#include <syslog.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <memory>
#include <string_view>
#include <vector>

namespace {

// A log at an address of its own, which these tests find in place of the system's.
class TestLog {
 public:
  TestLog() : socket_(socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0)) {
    // Without a name of its own it gets one from the system.
    const sa_family_t family = AF_UNIX;
    sockaddr_un address = {};
    socklen_t size = sizeof(address);
    EXPECT_EQ(bind(socket_, reinterpret_cast<const sockaddr*>(&family), sizeof(family)), 0);
    EXPECT_EQ(getsockname(socket_, reinterpret_cast<sockaddr*>(&address), &size), 0);
    address_ = {address, size};
  }
  ~TestLog() {
    address_ = {};
    close(socket_);
  }
  TestLog(const TestLog&) = delete;
  TestLog& operator=(const TestLog&) = delete;

  // The lines that came, without what is before them.
  std::vector<std::string> lines() const {
    std::vector<std::string> lines;
    std::array<char, 1000> buffer = {};
    ssize_t size = 0;
    while ((size = recv(socket_, buffer.data(), buffer.size(), MSG_DONTWAIT)) > 0) {
      const std::string_view entry(buffer.data(), static_cast<size_t>(size));
      const std::string_view program = " system_log_test: ";
      lines.emplace_back(entry.substr(entry.find(program) + program.size()));
    }
    return lines;
  }

  struct Address {
    sockaddr_un address;
    socklen_t size;
  };
  static Address address() { return address_; }

 private:
  int socket_;
  static Address address_;
};

TestLog::Address TestLog::address_ = {};

}  // namespace

// In place of the C library's. Where there is no test log there is none.
// NOLINTNEXTLINE(readability-inconsistent-declaration-parameter-name)
int connect(int descriptor, const sockaddr* address, socklen_t size) {
  const auto* path = reinterpret_cast<const sockaddr_un*>(address)->sun_path;
  EXPECT_STREQ(path, _PATH_LOG);
  const TestLog::Address log = TestLog::address();
  if (log.size == 0) {
    errno = ENOENT;
    return -1;
  }
  EXPECT_GT(size, 0U);
  return static_cast<int>(syscall(SYS_connect, descriptor, &log.address, log.size));
}

namespace {

// What arrives at the system log while only lines of `priority` pass: the C library copies each
// of them to standard error.
std::string logged(int priority, const std::string& line) {
  openlog("log_test", LOG_PERROR, LOG_USER);
  const int before = setlogmask(LOG_MASK(priority));
  testing::internal::CaptureStderr();
  logError(line);
  std::string output = testing::internal::GetCapturedStderr();
  setlogmask(before);
  closelog();
  return output;
}

TEST(LogError, GoesTheWayOfSyslogWhereThereHasBeenNoLog) {
  EXPECT_EQ(logged(LOG_ERR, "set: ERROR \"gain\""), "log_test: set: ERROR \"gain\"\n");
  EXPECT_EQ(logged(LOG_WARNING, "set: ERROR \"gain\""), "");
  EXPECT_EQ(logged(LOG_CRIT, "set: ERROR \"gain\""), "");
}

TEST(LogError, TakesTheLineAsItStandsWhereThereHasBeenNoLog) {
  EXPECT_EQ(logged(LOG_ERR, "100 %s %n %d%"), "log_test: 100 %s %n %d%\n");
}

TEST(LogRedirection, TakesTheLinesWhileItLives) {
  std::vector<std::string> lines;
  {
    const LogRedirection redirection([&lines](const std::string& line) { lines.push_back(line); });
    EXPECT_EQ(logged(LOG_ERR, "one"), "");
    logError("two");
  }
  EXPECT_EQ(logged(LOG_ERR, "three"), "log_test: three\n");
  EXPECT_EQ(lines, (std::vector<std::string>{"one", "two"}));
}

TEST(LogRedirection, TheLatestOneTakesTheLines) {
  std::vector<std::string> outer;
  std::vector<std::string> inner;
  const LogRedirection first([&outer](const std::string& line) { outer.push_back(line); });
  {
    const LogRedirection second([&inner](const std::string& line) { inner.push_back(line); });
    logError("inner");
  }
  logError("outer");
  EXPECT_EQ(inner, (std::vector<std::string>{"inner"}));
  EXPECT_EQ(outer, (std::vector<std::string>{"outer"}));
}

int lossesTold = 0;

// From here on there has been a log.
TEST(LogErrorWithALog, CountsWhatIsLostAndTellsItOnce) {
  whenLinesAreLost([] { ++lossesTold; });
  const TestLog log;
  EXPECT_FALSE(tellLostLines());
  while (lossesTold < 7) logError("line");
  EXPECT_TRUE(tellLostLines());
  const std::vector<std::string> taken = log.lines();
  EXPECT_GT(taken.size(), 0U);
  EXPECT_EQ(taken, std::vector<std::string>(taken.size(), "line"));
  EXPECT_FALSE(tellLostLines());
  EXPECT_FALSE(tellLostLines());
  EXPECT_EQ(log.lines(), std::vector<std::string>{"log: ERROR: lines lost: 7"});
  logError("after");
  EXPECT_EQ(log.lines(), std::vector<std::string>{"after"});
  EXPECT_EQ(lossesTold, 7);
  whenLinesAreLost(nullptr);
}

TEST(LogErrorWithALog, TellsWhatIsLostBeforeTheNextLine) {
  const TestLog log;
  logError("taken");
  logError(std::string(5000000, 'x'));  // more than the log takes at once
  logError(std::string(5000000, 'x'));
  logError("next");
  EXPECT_EQ(log.lines(), (std::vector<std::string>{"taken", "log: ERROR: lines lost: 1",
                                                   "log: ERROR: lines lost: 1", "next"}));
}

TEST(LogErrorWithALog, CountsTheLinesBetweenTwoLogs) {
  {
    const TestLog before;
    logError("one");
  }
  logError("two");
  logError("three");
  const TestLog log;
  logError("four");
  EXPECT_EQ(log.lines(), (std::vector<std::string>{"log: ERROR: lines lost: 2", "four"}));
}

}  // namespace
