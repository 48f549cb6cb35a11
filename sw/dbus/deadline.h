// A deadline for what waits without one, such as the bus library for a bus that lets clients
// connect and then says nothing.
#pragma once

#include <sys/time.h>

#include <csignal>
#include <string>

/// Ends the process unless it is destroyed in time. Takes the process's real-time timer and SIGALRM
/// while it lives; as there is one of each, a second deadline at the same time is a programming
/// error and stops the program. It is no thread: a process that ever had a second thread pays for
/// locks in every allocation from then on (docs/design.md).
class Deadline {
 public:
  /// Unless the deadline is destroyed within `milliseconds` (1 or more), writes `lastWords` to
  /// standard error and ends the process with status 1. That happens in a signal handler: no
  /// destructor runs, and what is in the buffers of streams is lost.
  Deadline(long milliseconds, std::string lastWords);
  /// In time: the signal's action, the signal mask and the timer are as they were before; the time
  /// in between does not count for a timer that was running.
  ~Deadline();
  Deadline(const Deadline&) = delete;
  Deadline& operator=(const Deadline&) = delete;

 private:
  std::string lastWords_;
  struct sigaction actionBefore_ {};
  sigset_t maskBefore_{};
  itimerval timerBefore_{};
};
