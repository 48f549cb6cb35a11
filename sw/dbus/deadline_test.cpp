#include "sw/dbus/deadline.h"

#include <gtest/gtest.h>
#include <unistd.h>

namespace {

constexpr int MINUTE = 60000;

void ignore(int /*signal*/) {}

bool isAlarmBlocked() {
  sigset_t mask;
  sigprocmask(SIG_SETMASK, nullptr, &mask);
  return sigismember(&mask, SIGALRM) == 1;
}

void setAlarmBlocked(bool isBlocked) {
  sigset_t alarm;
  sigemptyset(&alarm);
  sigaddset(&alarm, SIGALRM);
  sigprocmask(isBlocked ? SIG_BLOCK : SIG_UNBLOCK, &alarm, nullptr);
}

TEST(Deadline, LeavesTimerAndSignalAsTheyWere) {
  struct {
    long seconds;
    void (*handler)(int);
    bool isBlocked;
  } const cases[] = {{0, SIG_DFL, false}, {1000, ignore, true}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.seconds);
    itimerval timer{{}, {c.seconds, 0}};
    setitimer(ITIMER_REAL, &timer, nullptr);
    struct sigaction action {};
    action.sa_handler = c.handler;
    sigaction(SIGALRM, &action, nullptr);
    setAlarmBlocked(c.isBlocked);
    {
      const Deadline deadline(MINUTE, "late\n");
      EXPECT_FALSE(isAlarmBlocked());
      getitimer(ITIMER_REAL, &timer);
      EXPECT_LE(timer.it_value.tv_sec, MINUTE / 1000);
    }
    getitimer(ITIMER_REAL, &timer);
    EXPECT_EQ(timer.it_value.tv_sec > MINUTE / 1000, c.seconds > 0);
    EXPECT_EQ(timer.it_value.tv_sec + timer.it_value.tv_usec > 0, c.seconds > 0);
    sigaction(SIGALRM, nullptr, &action);
    EXPECT_EQ(action.sa_handler, c.handler);
    EXPECT_EQ(isAlarmBlocked(), c.isBlocked);
  }
  const itimerval none{};
  setitimer(ITIMER_REAL, &none, nullptr);
  setAlarmBlocked(false);
}

TEST(DeadlineDeathTest, EndsTheProcessWhenItIsMissed) {
  const auto outlast = [] {
    setAlarmBlocked(true);
    const Deadline deadline(1, "late\n");
    while (true) pause();
  };
  EXPECT_EXIT(outlast(), testing::ExitedWithCode(1), "^late\n$");
}

}  // namespace
