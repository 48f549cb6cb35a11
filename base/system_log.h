// The system log, as far as this system writes to it: single lines at error priority.
//
// The process has one thread, and the log one state: how many lines were lost. A line that the log
// does not take at once is lost and counted, so no call here ever waits for a log that is there.
#pragma once

#include <functional>
#include <string>

/// Writes one line, without its newline, to the system log at LOG_ERR. A line that the log does not
/// take at once is lost and counted. If lines were lost before, tellLostLines() comes first. Where
/// there has been no log yet, the line goes the way of syslog(3), which finds none to wait for.
///
/// Counts WORK_PER_LOG_LINE and a unit for each byte as spent work. Works also where memory is
/// exhausted; only a LogRedirection may raise what its sink raises.
void logError(const std::string& line);

/// Writes how many lines were lost since that was last told, as "log: ERROR: lines lost: COUNT".
/// Where none was lost, no line is written. Returns true where the log does not take that line
/// either, so that the caller has to try again later; false where all losses are told.
bool tellLostLines();

/// Has `act` called whenever a line is lost, in place of the function before. With null, none is
/// called. `act` must neither write to the log nor throw. The service uses it to try
/// tellLostLines() a second later.
void whenLinesAreLost(void (*act)());

/// Where logError's lines go while it lives, instead of the system log: for tests and tools. One
/// made while another lives takes over until it ends, so they end in the reverse order.
class LogRedirection {
 public:
  /// From now on `sink` is called with each line.
  explicit LogRedirection(std::function<void(const std::string&)> sink);
  /// Gives the lines back to whoever had them before.
  ~LogRedirection();
  LogRedirection(const LogRedirection&) = delete;
  LogRedirection& operator=(const LogRedirection&) = delete;

 private:
  friend void logError(const std::string& line);
  std::function<void(const std::string&)> sink_;
  LogRedirection* outer_;  // the one that it took over from, or null
};
