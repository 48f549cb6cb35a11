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
/// that does not read, this one does not. It works also where memory is exhausted.
class LogSocket {
 public:
  /// Opens nothing yet. `path` is the address of the log's socket and has to live as long as the
  /// object. A path of more than 107 bytes does not fit into an address: that is a programming
  /// error, and stops the program when the first line is sent.
  explicit LogSocket(const char* path) : path_(path) {}
  /// Closes the connection, if there is one.
  ~LogSocket() { close(); }
  LogSocket(const LogSocket&) = delete;
  LogSocket& operator=(const LogSocket&) = delete;

  /// Sends `line` as an entry at LOG_ERR of facility LOG_USER, after a header:
  ///
  ///   <11>Nov  2 20:36:57 ostrel: set: ERROR "gain"
  ///
  /// Opens the connection where there is none, and once more where the log has ended meanwhile; a
  /// log that takes only a stream gets a NUL byte behind each entry. An entry that is longer than
  /// the socket takes at once (some 200 kB, by the system's default) is lost.
  ///
  /// Returns 0 when the log has taken the entry, otherwise a LogFailure. After LOG_LOST the next
  /// call may succeed; the entry is not kept, so the caller counts it.
  int send(const char* line);

 private:
  int open();
  int connectAs(int type);
  int transmit(const char* line);
  int judge(long sent, size_t size);
  void close();

  const char* path_;
  int descriptor_ = -1;    // -1: no connection
  bool isStream_ = false;  // whether the connection is one of a stream
  bool wasOpen_ = false;   // whether there has ever been a connection
};
