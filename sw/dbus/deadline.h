// A deadline for what waits without one, such as the bus library for a bus that lets clients
// connect and then says nothing.
#pragma once

#include <sys/time.h>

#include <csignal>
#include <string>

/// Takes the process's real-time timer and its alarm signal while it lives, of which there is one:
/// so there is one deadline at a time. It is no thread, because a process that ever had a second
/// one pays for locks in every allocation from then on.
class Deadline {
 public:
  /// Writes `lastWords` to standard error and ends the process with status 1, unless the deadline
  /// is gone within `milliseconds`.
  Deadline(long milliseconds, std::string lastWords);
  /// In time: timer and signal are as they were before.
  ~Deadline();
  Deadline(const Deadline&) = delete;
  Deadline& operator=(const Deadline&) = delete;

 private:
  std::string lastWords_;
  struct sigaction actionBefore_ {};
  sigset_t maskBefore_{};
  itimerval timerBefore_{};
};
