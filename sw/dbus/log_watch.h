// Log watch: what the system log has lost is told, also where no further line comes.
#pragma once

#include <glib.h>

/// While it lives, and lines are lost, the main loop tries once a second to write how many. One
/// lives at a time.
class LogWatch {
 public:
  LogWatch();
  /// Tries a last time.
  ~LogWatch();
  LogWatch(const LogWatch&) = delete;
  LogWatch& operator=(const LogWatch&) = delete;

 private:
  GSource* source_;
};
