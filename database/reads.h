// Reads: the instances that an instance reads by itself, not through others; dependencies.h has
// all.
#pragma once

#include <set>
#include <string>

#include "database/database.h"
#include "sw/parm/index_tuple.h"

/// The full names of the other instances that the statements of `parm` and those of its indices
/// name, with the index values with which the instance `indices` reads them. `indices` has a value
/// for each index. Counts the work.
std::set<std::string> instancesRead(const ParmEntry& parm, const IndexTuple& indices);
