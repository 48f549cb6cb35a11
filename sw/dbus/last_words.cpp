#include "sw/dbus/last_words.h"

#include <glib.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "base/system_log.h"

namespace {

// Made at the start, as there is no memory for it when it is needed.
const std::string LOG_LINE = "service: ERROR: out of memory, ended";

// Whether GLib or the binding library says with `message` that there is no memory. Both say so in
// errors: GLib in "failed to allocate 24 bytes", the binding library in "Out of memory" and
// "dbus_connection_send failed: out of memory?". The texts of DROPPED are others of the binding
// library: it drops a message that could not be put together and goes on. Nobody would learn of a
// value, or a client would wait for ever.
bool isOfMemory(GLogLevelFlags level, const char* message) {
  if (message == nullptr) return true;
  constexpr std::array<const char*, 4> DROPPED = {
      "Unable to marshal ", "failed to marshal parameter ", "unable to append OUT arg ",
      "unable to append retval "};
  for (const char* dropped : DROPPED) {
    if (g_str_has_prefix(message, dropped) == TRUE) return true;
  }
  return (level & G_LOG_LEVEL_ERROR) != 0 && (strstr(message, "failed to allocate") != nullptr ||
                                              strcasestr(message, "memory") != nullptr);
}

void handleMessage(const char* domain, GLogLevelFlags level, const char* message, gpointer data) {
  if (isOfMemory(level, message)) endWithLastWords();
  g_log_default_handler(domain, level, message, data);
}

}  // namespace

void endWithLastWords() {
  // A failure on the way must not lead here again.
  static bool isEnding = false;
  if (!isEnding) {
    isEnding = true;
    dprintf(STDERR_FILENO, "%s", LAST_WORDS);
    logError(LOG_LINE);
  }
  _exit(1);
}

// This replaces the C library's function, with which GLib makes the text of each message. Without
// memory for one, GLib would make a message that says so, then one for that message, and so on
// until the stack has no room.
// NOLINTNEXTLINE(readability-identifier-naming,bugprone-reserved-identifier)
extern "C" __attribute__((format(printf, 3, 0))) int __vasprintf_chk(char** ptr, int /*flag*/,
                                                                     const char* fmt, va_list arg) {
  va_list again;
  va_copy(again, arg);
  const int length = vsnprintf(nullptr, 0, fmt, arg);
  *ptr = length < 0 ? nullptr : static_cast<char*>(malloc(static_cast<size_t>(length) + 1));
  if (*ptr != nullptr) {
    vsnprintf(*ptr, static_cast<size_t>(length) + 1, fmt, again);
  } else if (length >= 0) {
    endWithLastWords();
  }
  va_end(again);
  return length;
}

// This replaces the C library's function for GLib, which says so and calls it where it has no
// memory for a lock or for its pools of small pieces. Our own assertions end by SIGABRT as ever.
extern "C" void abort() noexcept {
  if (errno == ENOMEM) endWithLastWords();
  raise(SIGABRT);
  _exit(1);
}

void endInOrderWithoutMemory() {
  g_log_set_default_handler(handleMessage, nullptr);
  g_debug("What GLib needs for its first message is there from now on.");
}
