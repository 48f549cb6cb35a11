#include "deflang/system_log.h"

#include <gtest/gtest.h>
#include <syslog.h>

#include <vector>

namespace {

// What arrives at the system log while only lines of `priority` pass: the C library copies each
// of them to standard error.
std::string logged(int priority, const std::string& line) {
  openlog("log_test", LOG_PERROR, LOG_USER);
  const int before = setlogmask(LOG_MASK(priority));
  testing::internal::CaptureStderr();
  logError(line);
  const std::string output = testing::internal::GetCapturedStderr();
  setlogmask(before);
  closelog();
  return output;
}

TEST(LogError, WritesTheLineAtErrorPriority) {
  EXPECT_EQ(logged(LOG_ERR, "set: ERROR \"gain\""), "log_test: set: ERROR \"gain\"\n");
  EXPECT_EQ(logged(LOG_WARNING, "set: ERROR \"gain\""), "");
  EXPECT_EQ(logged(LOG_CRIT, "set: ERROR \"gain\""), "");
}

TEST(LogError, TakesTheLineAsItStands) {
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

}  // namespace
