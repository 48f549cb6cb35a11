// Log capture: preloaded into the daemon, it takes the place of the system log. Connections to the
// log's socket go to the one that LOG_SOCKET names; without that there is no such socket. Each line
// that goes the C library's own way goes, with its priority in front, to the end of the file that
// LOG_CAPTURE_FILE names.
//
// <syslog.h> is not included: its inline forms of these functions would be in the way.
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

// Allocates no memory, as the system log needs none either.
void append(int priority, const char* format, va_list arguments) {
  const char* file = getenv("LOG_CAPTURE_FILE");
  const int descriptor =
      file == nullptr ? -1 : open(file, O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0600);
  if (descriptor < 0) {
    abort();  // A line that nobody would see must not pass as a line that was not written.
  }
  if (dprintf(descriptor, "%d|", priority) < 0 || vdprintf(descriptor, format, arguments) < 0 ||
      dprintf(descriptor, "\n") < 0) {
    abort();
  }
  close(descriptor);
}

bool isSystemLog(const sockaddr* address) {
  return address->sa_family == AF_UNIX &&
         strcmp(reinterpret_cast<const sockaddr_un*>(address)->sun_path, "/dev/log") == 0;
}

int connectTo(int descriptor, const sockaddr* address, socklen_t size) {
  return static_cast<int>(syscall(SYS_connect, descriptor, address, size));
}

}  // namespace

extern "C" {

int connect(int fd, const sockaddr* addr, socklen_t len) {
  if (!isSystemLog(addr)) return connectTo(fd, addr, len);
  const char* path = getenv("LOG_SOCKET");
  sockaddr_un other = {};
  if (path == nullptr || strlen(path) >= sizeof(other.sun_path)) {
    errno = ENOENT;
    return -1;
  }
  other.sun_family = AF_UNIX;
  memcpy(&other.sun_path, path, strlen(path) + 1);
  return connectTo(fd, reinterpret_cast<const sockaddr*>(&other), sizeof(other));
}

void vsyslog(int priority, const char* format, va_list arguments) {
  append(priority, format, arguments);
}

void syslog(int priority, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  append(priority, format, arguments);
  va_end(arguments);
}

// What the same calls become where the C library's checks of formats are compiled in.
// NOLINTBEGIN(readability-identifier-naming,bugprone-reserved-identifier)
void __vsyslog_chk(int priority, int /*flag*/, const char* format, va_list arguments) {
  append(priority, format, arguments);
}

void __syslog_chk(int priority, int /*flag*/, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  append(priority, format, arguments);
  va_end(arguments);
}
// NOLINTEND(readability-identifier-naming,bugprone-reserved-identifier)
}
