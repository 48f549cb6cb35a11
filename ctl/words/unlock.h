// Unlocking: which changes of other parameters would let an instance be written, or take a value.
//
// Candidates are the parameters that the deciding statements use, with the values that they take.
// Each set of changes is tried in a transaction of its own, which the service judges, and so is
// each commit that it takes to store the value; nothing is stored. First changes of one parameter
// are tried, then of two. Where that finds none, candidates are also those of the statements that
// do not decide yet: another lock behind the first, and what limits a candidate.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "ctl/words/client.h"

/// What is wanted: that the instance can be written, and where a value is given, that it takes it.
struct UnlockGoal {
  std::string name;
  std::optional<std::string> value;
};

/// Changes that reach the goal.
struct Unlock {
  std::vector<Assignment> changes = {};
  /// The changes, and the wanted value, as they are to be committed: it may need a second commit.
  std::vector<std::vector<Assignment>> commits = {};
  std::vector<Change> effects = {};  ///< what else they change
};

struct UnlockSearch {
  /// One for each parameter that is enough by itself, those with the fewest effects first; where
  /// none is, one with two parameters.
  std::vector<Unlock> found;
  size_t tried = 0;
};

/// Searches. `reasons` are those of the instance as it is now. It is bounded: at most 12
/// parameters, and 1,000 trials.
UnlockSearch findUnlocks(Client& client, const UnlockGoal& goal,
                         const std::vector<Reason>& reasons);
