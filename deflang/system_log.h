// The system log, as far as this system writes to it: single lines at error priority.
#pragma once

#include <functional>
#include <string>

/// Writes one line, without its newline, with syslog at LOG_ERR.
void logError(const std::string& line);

/// Where logError's lines go while it lives, instead of the system log; for tests. One made while
/// another lives takes over until it ends.
class LogRedirection {
 public:
  explicit LogRedirection(std::function<void(const std::string&)> sink);
  ~LogRedirection();
  LogRedirection(const LogRedirection&) = delete;
  LogRedirection& operator=(const LogRedirection&) = delete;

 private:
  friend void logError(const std::string& line);
  std::function<void(const std::string&)> sink_;
  LogRedirection* outer_;
};
