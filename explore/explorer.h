// Exploration: walks over all variants of a text, steered by what was never judged.
//
// Each variant is visited in turn. A walk begins with a new device, which mostly is brought up
// first. Its steps are taken from a tour, in which each parameter gets each value of its
// vocabulary, and at random: most of these go for a statement that was never chosen, or a
// condition that was never true or never false, as long as there is one.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "coverage/text_coverage.h"
#include "explore/find.h"
#include "play/device.h"

/// When to stop.
struct ExploreBudget {
  uint64_t steps = UINT64_MAX;        ///< of all walks
  std::function<bool()> isOver = {};  ///< asked before each step; may be null
  /// Asked also while finds are shortened: whoever has explored wants what is there. May be null.
  std::function<bool()> isInterrupted = {};
};

/// What is explored.
struct ExploreTask {
  StartDevice start;                    ///< devices of the text, which note what they judge
  TextCoverage* coverage = nullptr;     ///< of the text; never null
  std::vector<PlayConstants> variants;  ///< at least one
  uint64_t seed = 1;
  ExploreBudget budget;
};

/// What came of it.
struct ExploreResult {
  uint64_t steps = 0;
  uint64_t commits = 0;     ///< of steps; a second commit of the same and trials do not count
  std::vector<Find> finds;  ///< shrunk; one of a kind (foundAgain()), the shortest that was seen
  std::string failure;      ///< why a variant could not be explored, else empty
};

/// More finds than these are not looked for.
constexpr size_t MAX_FINDS = 20;

/// Explores until the budget is spent. The same task has the same result, unless time is its
/// budget. Raises std::bad_alloc where memory is exhausted.
ExploreResult explore(const ExploreTask& task);
