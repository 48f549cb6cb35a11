// Log watch: what the system log has lost is told, also where no further line comes.
//
// A line that is written later tells it too (base/system_log.h); but it may be long in coming.
#pragma once

#include <glib.h>

/// While it lives and lines are lost, the main loop tries once a second to write how many. One
/// lives at a time; a second one is a programming error and stops the program. It takes memory when
/// it is made only, as lines are also lost where memory is exhausted.
class LogWatch {
 public:
  /// For the default main loop of the process.
  LogWatch();
  /// Tries a last time.
  ~LogWatch();
  LogWatch(const LogWatch&) = delete;
  LogWatch& operator=(const LogWatch&) = delete;

 private:
  GSource* source_;
};
