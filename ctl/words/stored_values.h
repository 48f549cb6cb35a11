// Stored values: what a device would have to get to be as it is now.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "ctl/words/levels.h"

struct StoredValues {
  /// Of all "rw" parameters, or of all; the empty text among them where it can be set.
  std::vector<Assignment> values;
  /// Those that are empty and cannot be made so: as nobody has set them yet.
  Names leftOut;
  bool isUp = false;  ///< whether anything has a value yet
};

/// `isStatus` is for all parameters. nullopt where the service has gone meanwhile and `mayGo`.
/// Otherwise it ends the program then.
std::optional<StoredValues> storedValues(Service& service, const Levels& levels, bool isStatus,
                                         bool mayGo = false);

/// The values where anything has one, else none: whoever keeps values does not keep those of a
/// device that has lost its own.
std::vector<Assignment> valuesWorthKeeping(const StoredValues& stored);

/// What is left out, for people; empty where nothing is.
std::string leftOutText(const Names& leftOut);
