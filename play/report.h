// Reports of played sessions.
#pragma once

#include <cstdio>
#include <memory>
#include <string>

#include "play/player.h"

/// In which form a report is written.
enum PlayFormat {
  PLAY_TEXT,   ///< for people
  PLAY_TAP,    ///< TAP version 14
  PLAY_JUNIT,  ///< the XML of JUnit
};

/// Is told of sessions, one after the other, and writes what has become of them. Each expectation
/// is a test.
class PlayReport : public PlayObserver {
 public:
  /// From here on operations are those of the session `name`.
  virtual void begin(const std::string& name) = 0;
  /// The session could not be read, or not played to its end, because of `error`.
  virtual void failed(const std::string& error) = 0;
  /// The last one is over.
  virtual void finish() = 0;

  /// Whether all expectations were met so far.
  [[nodiscard]] bool isAsExpected() const { return isAsExpected_; }

 protected:
  void note(const PlayedOperation& operation) {
    isAsExpected_ = isAsExpected_ && operation.isAsExpected;
  }

 private:
  bool isAsExpected_ = true;
};

/// A report that writes to `out`, which outlives it. A failed write is left to ferror(). In a quiet
/// one, outcomes that nobody expects are left out.
std::unique_ptr<PlayReport> newPlayReport(PlayFormat format, bool isQuiet, std::FILE* out);
