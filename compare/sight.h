// What can be seen of an instance in one situation, and how that differs between two texts.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "explore/walk.h"
#include "play/device.h"

/// An instance as a client sees it.
struct Sight {
  bool exists = false;
  std::string refusingIndex = {};  ///< the index that has no such value, where that is why not
  bool hasRange = false;           ///< its range can be worked out; else nothing below counts
  NamedRange range = {};
  std::string fallback = {};  ///< what a reset makes of it
  /// What becomes of each of some values when a client sets it: empty where that is refused or
  /// passed over, nothing where it cannot be told, as with what is held anyway.
  std::vector<std::optional<std::string>> outcomes = {};
};

/// In which way an instance differs.
enum ChangeKind {
  CHANGE_ABSENT,    ///< it no longer exists
  CHANGE_PRESENT,   ///< it did not exist
  CHANGE_BROKEN,    ///< its range cannot be worked out any more
  CHANGE_OTHER,     ///< some of its values are no longer allowed, and others are
  CHANGE_NARROWER,  ///< some of its values are no longer allowed
  CHANGE_WIDER,     ///< all are, and further ones
  CHANGE_LOCKED,    ///< no client can set a value that it could set before
  CHANGE_OUTCOME,   ///< a value that was kept becomes another one, or is refused
  CHANGE_DEFAULT,   ///< a reset makes another value of it
};

/// What differs. The values whose outcomes are compared are `values`.
std::vector<ChangeKind> changesBetween(const Sight& old, const Sight& now,
                                       const std::vector<std::string>& values);
/// The first of `values` that the old device takes, and makes another value of than the new one;
/// their number where there is none.
size_t firstOtherOutcome(const Sight& old, const Sight& now,
                         const std::vector<std::string>& values);

/// A device that was brought up, and is led from there.
class LedDevice {
 public:
  LedDevice(const StartDevice& start, const PlayConstants& constants);

  /// Whether it has started.
  [[nodiscard]] bool isThere() const { return device_ != nullptr; }
  /// Sets one value, in a commit of its own.
  void walk(const WalkStep& step);
  /// Looks at the instance `name`, and tries `values` for it.
  Sight look(const std::string& name, const std::vector<std::string>& values);
  /// What the instance holds.
  std::string valueOf(const std::string& name);
  /// The sentence that says why the instance is in that respect as it is; may be empty.
  std::string reasonOf(const std::string& name, ChangeKind kind);

 private:
  void lookAtExistence(uint32_t id, const std::string& name, Sight& sight);
  std::string valueAfter(const std::string& name, const Answer& tried);
  std::optional<std::string> outcomeOf(const std::string& name, const std::string& value,
                                       const Sight& sight);

  std::unique_ptr<Device> device_;
};
