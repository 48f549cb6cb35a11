// Device names: the instances of a device, and which of them a change is about.
#pragma once

#include <map>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "play/bring_up.h"

/// The random numbers of an exploration.
using ExploreRandom = std::mt19937_64;

/// A number below `count`, which is not 0: the same from the same state on every machine.
inline size_t below(ExploreRandom& random, size_t count) {
  return static_cast<size_t>(random() % count);
}

/// Whether a device can be told `text`, which may come from any bytes: it is valid UTF-8.
bool canBeSaid(const std::string& text);

/// The names of a device. A name that is no valid UTF-8 cannot be said to a device, and is left
/// out.
class DeviceNames {
 public:
  /// More instances than these are not listed.
  static constexpr size_t MAX_LISTED = 5000;

  explicit DeviceNames(const KnownDevice& known);

  /// The base names of the parameters, ascending.
  [[nodiscard]] const std::vector<std::string>& parms() const { return parms_; }
  /// The full names of all instances that may ever exist; none where they are more than MAX_LISTED.
  [[nodiscard]] const std::vector<std::string>& all() const { return all_; }
  /// An instance of `parm`, with one of the values that each of its indices may take.
  [[nodiscard]] std::string anyOf(const std::string& parm, ExploreRandom& random) const;
  /// The full name in "name=value", in which both may have the sign, too; empty where it is none of
  /// the device.
  [[nodiscard]] std::string_view nameIn(std::string_view change) const;

 private:
  using Texts = std::vector<std::string>;

  [[nodiscard]] bool isInstance(std::string_view name) const;

  std::map<std::string, Texts, std::less<>> indices_;  // of each parameter
  std::map<std::string, Texts, std::less<>> values_;   // of each index
  Texts parms_;
  Texts all_;
};
