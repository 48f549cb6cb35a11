// Start order: what a start resets before one instance, and the instance itself; and which
// instances to ask.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "database/dependencies.h"

/// An instance with all that it depends on.
struct StartOrder {
  std::vector<Instance> instances = {};  ///< each after what it follows; some may be incomplete
  std::vector<std::string> names = {};   ///< of those that are complete
};

/// What a start resets together: plain names first, each level after what it follows. So no value
/// is judged too early.
using StartRound = std::pair<bool, uint32_t>;
inline StartRound startRoundOf(const ParmEntry& parm) {
  return {!parm.parm.indices().empty(), parm.level};
}

/// Up to `most` instances of a parameter: of each index all values where there are few, else some
/// ends of its ranges. None where an index has no values.
std::vector<IndexTuple> someInstances(const ParmDef& parm, size_t most);

/// Finds the order for `name`, a full name. Returns false where too much depends on one another.
bool findStartOrder(Database& database, const std::string& name, StartOrder& order);
