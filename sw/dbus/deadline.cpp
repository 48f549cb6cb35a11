#include "sw/dbus/deadline.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <cassert>
#include <cerrno>
#include <utility>

namespace {

void await(int met, int milliseconds, const std::function<void()>& missed) {
  pollfd waiting = {.fd = met, .events = POLLIN, .revents = 0};
  int result = 0;
  do {
    result = poll(&waiting, 1, milliseconds);
  } while (result < 0 && errno == EINTR);
  if (result == 0) missed();
}

}  // namespace

Deadline::Deadline(int milliseconds, std::function<void()> missed)
    : met_(eventfd(0, EFD_CLOEXEC)),
      thread_([met = met_, milliseconds, missed = std::move(missed)] {
        await(met, milliseconds, missed);
      }) {
  assert(met_ >= 0);
}

Deadline::~Deadline() {
  eventfd_write(met_, 1);
  thread_.join();
  close(met_);
}
