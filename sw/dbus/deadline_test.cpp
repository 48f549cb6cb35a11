#include "sw/dbus/deadline.h"

#include <gtest/gtest.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

itimerval lastTimer{};

}  // namespace

// Around that of the C library.
// NOLINTNEXTLINE(readability-inconsistent-declaration-parameter-name)
extern "C" int setitimer(__itimer_which_t which, const itimerval* timer,
                         itimerval* before) noexcept {
  lastTimer = *timer;
  return static_cast<int>(syscall(SYS_setitimer, which, timer, before));
}

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

TEST(Deadline, IsAsLateAsItWasAskedFor) {
  struct {
    long milliseconds;
    long seconds;
    long microseconds;
  } const cases[] = {{999, 0, 999000}, {1000, 1, 0}, {60001, 60, 1000}, {100000000, 100000, 0}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.milliseconds);
    const Deadline deadline(c.milliseconds, "late\n");
    EXPECT_EQ(lastTimer.it_value.tv_sec, c.seconds);
    EXPECT_EQ(lastTimer.it_value.tv_usec, c.microseconds);
  }
}

// So that what is not given a value afterwards is not 0.
[[gnu::noinline]] void fillTheStack() {
  volatile char bytes[4096];
  for (volatile char& byte : bytes) byte = -1;
}

TEST(Deadline, LeavesOtherSignalsBlocked) {
  sigset_t all;
  sigset_t before;
  sigset_t during;
  sigfillset(&all);
  sigprocmask(SIG_SETMASK, &all, &before);
  {
    fillTheStack();
    const Deadline deadline(MINUTE, "late\n");
    sigprocmask(SIG_SETMASK, nullptr, &during);
  }
  sigprocmask(SIG_SETMASK, &before, nullptr);
  for (const int signal : {SIGTERM, SIGINT, SIGHUP, SIGUSR1, SIGCHLD}) {
    EXPECT_EQ(sigismember(&during, signal), 1) << signal;
  }
  EXPECT_EQ(sigismember(&during, SIGALRM), 0);
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
