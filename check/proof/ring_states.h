// Ring states: every situation that commits can lead to, from the defaults on, where parameters
// refer to each other.
#pragma once

#include <functional>

#include "check/proof/attempt.h"
#include "check/proof/replay.h"

/// How a walk through the states of a cone has ended.
enum WalkEnd {
  WALK_COMPLETE,  ///< there is no other state that an expression of the cone or the goal can tell
  WALK_STOPPED,   ///< the visitor has seen enough
  WALK_CUT,       ///< there are too many to visit them all, or no time is left
};

/// How many commits a walk may take.
constexpr size_t MAX_RING_COMMITS = 8000;

/// Calls `visit` with each state of the cone of `attempt`, of which the uses have to be noted, and
/// with the commits that lead there from the defaults: the fewest; what is reset has the value
/// there that it comes to have. The state is what the database holds meanwhile; `visit` may change
/// it, and returns whether it has seen enough. Where it is plain at once that there are too many
/// states, none is visited. All values of the cone are unset afterwards.
WalkEnd walkRingStates(Attempt& attempt, const Deadline& deadline,
                       const std::function<bool(const Commits& commits)>& visit);
