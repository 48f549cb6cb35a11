// A clock twenty times as fast: preloaded into the daemon, what waits for a minute waits for three
// seconds.
#include <poll.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <unistd.h>

#include <ctime>

namespace {

constexpr int SPEED = 20;

int fastPoll(pollfd* descriptors, nfds_t count, int timeout) {
  const int wait = timeout > 0 ? timeout / SPEED + 1 : timeout;
  return static_cast<int>(syscall(SYS_poll, descriptors, count, wait));
}

}  // namespace

extern "C" {

int poll(pollfd* fds, nfds_t nfds, int timeout) { return fastPoll(fds, nfds, timeout); }

// What the same call becomes where the C library's checks are compiled in.
// NOLINTNEXTLINE(readability-identifier-naming,bugprone-reserved-identifier)
int __poll_chk(pollfd* descriptors, nfds_t count, int timeout, size_t /*size*/) {
  return fastPoll(descriptors, count, timeout);
}

// Timers that fire once. The library's own name for the value is a keyword.
// NOLINTNEXTLINE(readability-identifier-naming,readability-inconsistent-declaration-parameter-name)
int setitimer(__itimer_which_t which, const itimerval* value, itimerval* old) noexcept {
  constexpr long SECOND = 1000000;
  const long wait = (value->it_value.tv_sec * SECOND + value->it_value.tv_usec) / SPEED;
  const itimerval timer = {{}, {wait / SECOND, wait % SECOND}};
  return static_cast<int>(syscall(SYS_setitimer, which, &timer, old));
}

// NOLINTNEXTLINE(readability-identifier-naming)
int clock_gettime(clockid_t clock_id, timespec* tp) noexcept {
  constexpr long SECOND = 1000000000;
  const long result = syscall(SYS_clock_gettime, clock_id, tp);
  const long rest = tp->tv_nsec * SPEED;
  tp->tv_sec = tp->tv_sec * SPEED + rest / SECOND;
  tp->tv_nsec = rest % SECOND;
  return static_cast<int>(result);
}
}
