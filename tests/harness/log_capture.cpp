// Log capture: preloaded into the daemon, it takes the place of the system log. Each line goes,
// with its priority in front, to the end of the file that LOG_CAPTURE_FILE names.
//
// <syslog.h> is not included: its inline forms of these functions would be in the way.
#include <fcntl.h>
#include <unistd.h>

#include <cstdarg>
#include <cstdio>
#include <cstdlib>

namespace {

// Nothing in it raises exceptions: no more does the system log where memory is exhausted.
void append(int priority, const char* format, va_list arguments) {
  const char* file = getenv("LOG_CAPTURE_FILE");
  const int descriptor =
      file == nullptr ? -1 : open(file, O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0600);
  if (descriptor < 0) {
    abort();  // A line that nobody would see must not pass as a line that was not written.
  }
  char* text = nullptr;
  char* line = nullptr;
  if (vasprintf(&text, format, arguments) < 0) abort();
  const int size = asprintf(&line, "%d|%s\n", priority, text);
  if (size < 0 || write(descriptor, line, static_cast<size_t>(size)) != size) abort();
  free(line);
  free(text);
  close(descriptor);
}

}  // namespace

extern "C" {

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
