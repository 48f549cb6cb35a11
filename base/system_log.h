// The system log, as far as this system writes to it: single lines at error priority.
#pragma once

#include <functional>
#include <string>

/// Writes one line, without its newline, to the system log at LOG_ERR, and never waits for it: what
/// the log does not take at once is lost and counted. Where no log has been there yet, the line
/// goes the way of syslog(3). Nothing in it takes memory.
void logError(const std::string& line);

/// Writes how many lines were lost, as "log: ERROR: lines lost: COUNT", unless none was, or all
/// were told. Each line that is written does so first. Returns whether the log does not take that
/// line either, so that it is still to be written.
bool tellLostLines();

/// Has `act` called whenever a line is lost; null: nothing is called. It must neither write to the
/// log nor throw.
void whenLinesAreLost(void (*act)());

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
