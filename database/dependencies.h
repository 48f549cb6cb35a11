// Dependencies: the names that a parameter depends on, directly or through others.
#pragma once

#include <cstddef>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "database/database.h"
#include "database/query_limit.h"
#include "sw/parm/index_tuple.h"

/// Results of dependencies.
enum DependenciesResult : int {
  DEPENDENCIES_FOUND = 0,
  DEPENDENCIES_NO_PARAMETER = 1,
  DEPENDENCIES_INVALID_INDEX = 2,
  DEPENDENCIES_TOO_LARGE = 3,  ///< the names have more than MAX_QUERY_BYTES
};

/// Finds the names that a parameter depends on, as they are written in its expressions and in those
/// of the parameters they lead to. With `withIndices`, `name` is a full name, and each name is
/// given the index values that it shares with it, or, behind an instance that the text names, with
/// that instance. Returns a DependenciesResult; an index is invalid when the number of index
/// values or one of them does not fit the index definitions.
int dependencies(Database& database, std::string_view name, bool withIndices,
                 std::set<std::string>& out);

/// A parameter with index values, as a name has them.
struct Instance {
  ParmEntry* parm;
  IndexTuple indices;
  /// Whether there are as many index values as indices. Otherwise it is the name of no instance,
  /// though one under which something can be staged.
  [[nodiscard]] bool isComplete() const { return indices.size() == parm->parm.indices().size(); }
};

/// As dependencies() with index values, but as instances: first the one that `name` says, then
/// those that the other names of parameters make, complete or not. Returns a DependenciesResult.
int dependencyInstances(Database& database, std::string_view name, std::vector<Instance>& out);
