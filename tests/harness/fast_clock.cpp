// A clock ten times as fast: preloaded into the daemon, what waits for half a minute waits for
// three seconds.
#include <poll.h>
#include <sys/syscall.h>
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

int poll(pollfd* descriptors, nfds_t count, int timeout) {
  return fastPoll(descriptors, count, timeout);
}

// What the same call becomes where the C library's checks are compiled in.
// NOLINTNEXTLINE(readability-identifier-naming,bugprone-reserved-identifier)
int __poll_chk(pollfd* descriptors, nfds_t count, int timeout, size_t /*size*/) {
  return fastPoll(descriptors, count, timeout);
}

// NOLINTNEXTLINE(readability-identifier-naming)
int clock_gettime(clockid_t clock, timespec* time) noexcept {
  constexpr long SECOND = 1000000000;
  const long result = syscall(SYS_clock_gettime, clock, time);
  const long rest = time->tv_nsec * SPEED;
  time->tv_sec = time->tv_sec * SPEED + rest / SECOND;
  time->tv_nsec = rest % SECOND;
  return static_cast<int>(result);
}
}
