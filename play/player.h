// Plays sessions with a device.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "play/device.h"
#include "play/outcome.h"
#include "play/session.h"

/// So many operations and rounds of loops are played in a session.
constexpr size_t MAX_PLAYED = 1000000;

/// An operation that was played. The references are those of the session.
struct PlayedOperation {
  const Operation& operation;
  std::string variables;  ///< of the loops around, "s=720p/50 c=1"; empty outside of loops
  Outcome outcome;
  bool isAsExpected = true;  ///< also where nothing is expected
};

/// Who is told of each operation.
class PlayObserver {
 public:
  PlayObserver() = default;
  virtual ~PlayObserver() = default;
  PlayObserver(const PlayObserver&) = delete;
  PlayObserver& operator=(const PlayObserver&) = delete;
  virtual void played(const PlayedOperation& operation) = 0;
};

/// Plays sessions that belong together with one device: each goes on where the one before has
/// ended.
class SessionPlayer {
 public:
  /// The device is one that `start` gives with `constants`; a session may ask for others. All that
  /// is given outlives the player. At most `most` operations and rounds are played in a session.
  SessionPlayer(const StartDevice& start, const PlayConstants& constants, PlayObserver& observer,
                size_t most = MAX_PLAYED);
  ~SessionPlayer();
  SessionPlayer(const SessionPlayer&) = delete;
  SessionPlayer& operator=(const SessionPlayer&) = delete;

  /// Returns what has kept the session from being played to its end, if anything has. Raises
  /// std::bad_alloc where memory is exhausted.
  std::optional<SessionError> play(const Session& session);
  /// The device, which the next session may replace; null where it does not start.
  [[nodiscard]] Device* device();

 private:
  class State;
  std::unique_ptr<State> state_;
};

/// Plays one session, as SessionPlayer does.
std::optional<SessionError> playSession(const Session& session, const StartDevice& start,
                                        const PlayConstants& constants, PlayObserver& observer,
                                        size_t most = MAX_PLAYED);
