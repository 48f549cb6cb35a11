#include "base/log_socket.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <syslog.h>
#include <unistd.h>

#include <array>
#include <cassert>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <string_view>

namespace {

constexpr int BROKEN = -1;  // the log has ended the connection

using Header = std::array<char, 512>;

// "<PRIORITY>Nov  2 20:36:57 PROGRAM: ". The name of a program has at most 255 bytes.
size_t writeHeader(Header& header) {
  constexpr std::array<const char*, 12> MONTHS = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                  "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
  const time_t now = time(nullptr);
  tm local = {};
  localtime_r(&now, &local);
  const int size =
      snprintf(header.data(), header.size(), "<%d>%s %2d %02d:%02d:%02d %s: ", LOG_USER | LOG_ERR,
               MONTHS[static_cast<size_t>(local.tm_mon)], local.tm_mday, local.tm_hour,
               local.tm_min, local.tm_sec, program_invocation_short_name);
  assert(0 < size && static_cast<size_t>(size) < header.size());
  return static_cast<size_t>(size);
}

// sendmsg() only reads the data; the library's type serves reading and writing.
iovec piece(const char* data, size_t size) { return {const_cast<char*>(data), size}; }

// Whether the log is there, but takes no entry now, or not this one.
bool isRefusal(int error) {
  return error == EAGAIN || error == EMSGSIZE || error == ENOBUFS || error == ENOMEM;
}

}  // namespace

int LogSocket::send(const char* line) {
  if (descriptor_ >= 0) {
    const int result = transmit(line);
    if (result != BROKEN) return result;
  }
  // The log may have been started anew.
  const int result = open();
  if (result != 0) return result;
  return transmit(line) == 0 ? 0 : LOG_LOST;
}

int LogSocket::open() {
  int error = connectAs(SOCK_DGRAM);
  if (error == EPROTOTYPE) error = connectAs(SOCK_STREAM);
  if (error == 0) return 0;
  const bool isAbsent =
      error != EAGAIN && error != EMFILE && error != ENFILE && error != ENOBUFS && error != ENOMEM;
  return isAbsent && !wasOpen_ ? LOG_ABSENT : LOG_LOST;
}

// Returns 0 or an errno.
int LogSocket::connectAs(int type) {
  sockaddr_un address = {.sun_family = AF_UNIX, .sun_path = {}};
  assert(strlen(path_) < sizeof(address.sun_path));
  memcpy(&address.sun_path, path_, strlen(path_) + 1);
  descriptor_ = socket(AF_UNIX, type | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
  if (descriptor_ < 0) return errno;
  if (connect(descriptor_, reinterpret_cast<sockaddr*>(&address), sizeof(address)) != 0) {
    const int error = errno;
    close();
    return error;
  }
  isStream_ = type == SOCK_STREAM;
  wasOpen_ = true;
  return 0;
}

// Returns 0, LOG_LOST or BROKEN; with BROKEN the socket is closed.
int LogSocket::transmit(const char* line) {
  Header header;
  // A stream does not keep entries apart, so there each ends with a NUL.
  std::array<iovec, 2> pieces = {piece(header.data(), writeHeader(header)),
                                 piece(line, strlen(line) + (isStream_ ? 1 : 0))};
  msghdr message = {};
  message.msg_iov = pieces.data();
  message.msg_iovlen = pieces.size();
  const ssize_t sent = sendmsg(descriptor_, &message, MSG_DONTWAIT | MSG_NOSIGNAL);
  return judge(sent, pieces[0].iov_len + pieces[1].iov_len);
}

// What became of an entry of `size` bytes. `sent` is the result of sendmsg(): how many of them it
// has taken, or -1. Returns as transmit().
int LogSocket::judge(long sent, size_t size) {
  if (sent == static_cast<long>(size)) return 0;
  if (sent < 0 && isRefusal(errno)) return LOG_LOST;
  // A stream that has taken only the beginning of an entry cannot take another entry behind it.
  close();
  return sent < 0 ? BROKEN : LOG_LOST;
}

void LogSocket::close() {
  if (descriptor_ >= 0) ::close(descriptor_);
  descriptor_ = -1;
}
