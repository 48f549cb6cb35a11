// Differences: what a new definition text means for who knows the old one.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// Where the line of a difference is.
enum DifferencePlace {
  DIFFERENCE_IN_NEW,     ///< in the new text
  DIFFERENCE_IN_OLD,     ///< in the old text, as the new one has no such definition
  DIFFERENCE_IN_VALUES,  ///< in the file of saved values
};

/// One thing that has changed.
struct Difference {
  bool isIncompatible = false;  ///< what clients could do or rely on is no longer so
  DifferencePlace place = DIFFERENCE_IN_NEW;
  uint32_t line = 0;        ///< from 1; of a text, that of the definition
  std::string name;         ///< of the definition or of an instance
  std::string text;         ///< a sentence, with all that comes behind the name
  std::string reason = {};  ///< what has decided in the new text; may be empty
};

using Differences = std::vector<Difference>;
