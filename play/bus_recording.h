// Records what passes between the clients of a bus and the service on it.
#pragma once

#include <gio/gio.h>

#include <cstdint>
#include <string>
#include <utility>

#include "play/recorder.h"

/// Hands what concerns the service to a recorder, which outlives it.
class BusRecording {
 public:
  /// The service is `name`, which `owner` owns. Calls of `self` are left out.
  BusRecording(Recorder& recorder, std::string name, std::string owner, std::string self)
      : recorder_(recorder),
        name_(std::move(name)),
        owner_(std::move(owner)),
        self_(std::move(self)) {}

  /// Looks at a message that has passed.
  void see(GDBusMessage& message);

  /// The number of the last call of `self` whose answer has been seen; 0 before.
  [[nodiscard]] uint32_t lastOwnAnswer() const { return lastOwnAnswer_; }
  /// From the answer to that call of `self` on, what is served is recorded. Before it, nothing is.
  void beginAt(uint32_t ownCall) { begin_ = ownCall; }
  /// Whether the service has left the bus.
  [[nodiscard]] bool isOver() const { return isOver_; }

 private:
  void seeCall(GDBusMessage& message);
  void seeAnswer(GDBusMessage& message);
  void seeSignal(GDBusMessage& message);

  Recorder& recorder_;
  const std::string name_;
  const std::string owner_;
  const std::string self_;
  uint32_t lastOwnAnswer_ = 0;
  uint32_t begin_ = 0;
  bool hasBegun_ = false;
  bool isOver_ = false;
};
