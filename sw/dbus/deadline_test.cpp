#include "sw/dbus/deadline.h"

#include <gtest/gtest.h>
#include <sys/time.h>
#include <unistd.h>

namespace {

constexpr int MINUTE = 60000;

TEST(Deadline, LeavesTimerAndSignalAsTheyWere) {
  for (int i = 0; i < 2; ++i) {
    { const Deadline deadline(MINUTE, "late\n"); }
    itimerval timer{};
    ASSERT_EQ(getitimer(ITIMER_REAL, &timer), 0);
    EXPECT_EQ(timer.it_value.tv_sec, 0);
    EXPECT_EQ(timer.it_value.tv_usec, 0);
    struct sigaction action {};
    ASSERT_EQ(sigaction(SIGALRM, nullptr, &action), 0);
    EXPECT_EQ(action.sa_handler, SIG_DFL);
  }
}

TEST(DeadlineDeathTest, EndsTheProcessWhenItIsMissed) {
  const auto outlast = [] {
    const Deadline deadline(1, "late\n");
    while (true) pause();
  };
  EXPECT_EXIT(outlast(), testing::ExitedWithCode(1), "^late\n$");
}

}  // namespace
