// Saved values: what a new definition text makes of the values that devices of the old one hold.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "compare/difference.h"
#include "play/device.h"

/// A value that was saved.
struct SavedValue {
  uint32_t line = 0;  ///< from 1
  std::string name;   ///< full
  std::string value;
};

/// What is wrong with a file of saved values.
struct SavedError {
  uint32_t line = 0;
  std::string text;
};

/// Reads lines of "name=value". A value that begins with a quote is written as in a session; any
/// other one is all up to the end of the line. Empty lines, and those that begin with "#", say
/// nothing. Returns what is wrong.
std::vector<SavedError> readSavedValues(const std::string& text, std::vector<SavedValue>& values);

/// Brings a device of each text up with `values` as those that are known from before, and adds to
/// `differences` each that the old device keeps and the new one does not.
void compareSavedValues(const StartDevice& old, const StartDevice& now,
                        const PlayConstants& constants, const std::vector<SavedValue>& values,
                        Differences& differences);
