// Log socket: entries for the system log, sent without ever waiting for it.
#pragma once

#include <cstddef>

/// What became of an entry that was not sent.
enum LogFailure : int {
  LOG_LOST = 1,    ///< the log does not take it: it is full, too slow, or away for a while
  LOG_ABSENT = 2,  ///< no log is there, and none has been since the start
};

/// The connection to the system log, made when it is first needed and again after the log's end.
/// An entry has the form that syslog(3) gives it, to the byte; but where syslog(3) waits for a log
/// that does not read, this one does not. Nothing in it takes memory.
class LogSocket {
 public:
  /// To the log at `path`, which has to live as long.
  explicit LogSocket(const char* path) : path_(path) {}
  ~LogSocket() { close(); }
  LogSocket(const LogSocket&) = delete;
  LogSocket& operator=(const LogSocket&) = delete;

  /// Sends `line` as an entry at LOG_ERR of facility LOG_USER. Returns 0 or a LogFailure. An
  /// entry that is longer than the socket takes at once (some 200 kB, by the system's default) is
  /// lost.
  int send(const char* line);

 private:
  int open();
  int connectAs(int type);
  int transmit(const char* line);
  int judge(long sent, size_t size);
  void close();

  const char* path_;
  int descriptor_ = -1;
  bool isStream_ = false;
  bool wasOpen_ = false;
};
