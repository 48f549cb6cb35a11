// Detach failure: preloaded into the daemon, it keeps the process from detaching.
#include <cerrno>

extern "C" int daemon(int /*nochdir*/, int /*noclose*/) {
  errno = EAGAIN;
  return -1;
}
