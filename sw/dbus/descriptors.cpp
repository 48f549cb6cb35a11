#include "sw/dbus/descriptors.h"

#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

bool isHidden = false;

}  // namespace

WithoutDescriptors::WithoutDescriptors() { isHidden = true; }

WithoutDescriptors::~WithoutDescriptors() { isHidden = false; }

// This replaces the C library's function, also where other libraries call it.
extern "C" int getsockname(int fd, sockaddr* addr, socklen_t* len) noexcept {
  const auto result = static_cast<int>(syscall(SYS_getsockname, fd, addr, len));
  if (result == 0 && isHidden) addr->sa_family = AF_UNSPEC;
  return result;
}
