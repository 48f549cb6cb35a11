// The steps of a bring-up: which parameters are done together, and which of them follow themselves.
#pragma once

#include <cstdint>
#include <vector>

/// By the number of each parameter, the numbers of those that it depends on, also through others,
/// ascending.
using ParmDependencies = std::vector<std::vector<uint32_t>>;

struct BringUpSteps {
  /// Each parameter is in the first step in which all are done that it depends on; those that
  /// depend on each other are a ring, and in one step. Ascending within a step.
  std::vector<std::vector<uint32_t>> steps = {};
  std::vector<bool> isInRing = {};  ///< by number: whether it depends on itself
};

/// Takes about as long as the dependencies are many.
BringUpSteps bringUpSteps(const ParmDependencies& dependencies);
