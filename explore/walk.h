// Walks: what is done to a device, one commit after the other.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "play/device.h"

/// One instance is staged and committed. Alone: a commit of several judges what nothing depends on
/// before it has applied the others, and so their order matters by design.
struct WalkStep {
  std::string_view method = {};  ///< "set", "set_status", "reset" or "reset_status"
  std::string name;              ///< the full name
  std::string value = {};        ///< of set and set_status

  [[nodiscard]] bool isReset() const { return method.starts_with("reset"); }
  bool operator==(const WalkStep& other) const = default;
};

/// From the start of a device.
struct Walk {
  PlayConstants constants = {};
  bool isUp = false;  ///< the device is brought up first
  std::vector<WalkStep> steps = {};
};
