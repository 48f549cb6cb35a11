// Preloaded into a program, it is the journal: what is sent there goes to the file of the
// environment's JOURNAL_CAPTURE_FILE instead, with an empty line behind each message.
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/uio.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

namespace {

bool isForJournal(const msghdr& message) {
  const auto* const address = static_cast<const sockaddr_un*>(message.msg_name);
  return address != nullptr && address->sun_family == AF_UNIX &&
         std::string(address->sun_path) == "/run/systemd/journal/socket";
}

}  // namespace

// The C library's names of the parameters are none that a program may have.
// NOLINTNEXTLINE(readability-inconsistent-declaration-parameter-name)
extern "C" ssize_t sendmsg(int descriptor, const msghdr* message, int flags) {
  using Send = ssize_t (*)(int, const msghdr*, int);
  static const auto send = reinterpret_cast<Send>(dlsym(RTLD_NEXT, "sendmsg"));
  if (!isForJournal(*message)) return send(descriptor, message, flags);
  std::string text;
  for (size_t i = 0; i < message->msg_iovlen; ++i) {
    text.append(static_cast<const char*>(message->msg_iov[i].iov_base),
                message->msg_iov[i].iov_len);
  }
  const ssize_t length = static_cast<ssize_t>(text.size());
  text += '\n';
  const char* const path = std::getenv("JOURNAL_CAPTURE_FILE");
  if (path == nullptr) return -1;
  const int file = open(path, O_WRONLY | O_APPEND | O_CREAT, 0600);
  const bool isWritten = write(file, text.data(), text.size()) == length + 1;
  close(file);
  return isWritten ? length : -1;
}
