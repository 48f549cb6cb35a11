// A deadline for what waits without one, such as the bus library for a bus that lets clients
// connect and then says nothing.
#pragma once

#include <functional>
#include <thread>

class Deadline {
 public:
  /// Calls `missed`, in a thread of its own, unless the deadline is gone within `milliseconds`.
  Deadline(int milliseconds, std::function<void()> missed);
  /// In time. No thread is left when it returns, so that the process can fork.
  ~Deadline();
  Deadline(const Deadline&) = delete;
  Deadline& operator=(const Deadline&) = delete;

 private:
  int met_;  ///< an event descriptor
  std::thread thread_;
};
