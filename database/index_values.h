// Index values: every value that an index's base bounds name, and every combination of them.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "database/database.h"
#include "sw/parm/index_tuple.h"

/// The value set of an index: every integer of its base bounds' spans, in decimal, and the allowed
/// texts, ascending as texts ("10" comes before "2"). Worked out once for each index.
const std::vector<std::string>& indexValues(IndexEntry& index);

/// How many values it has, without working them out; a value that is both a number of a span and a
/// text counts twice.
uint64_t countIndexValues(const IndexDef& index);

/// How many combinations forEachInstance() visits, at most UINT64_MAX; a value that is both a
/// number of a span and a text counts twice.
uint64_t countInstances(const ParmDef& parm);

/// Calls `visit` with every combination of the values of a parameter's indices, in index order;
/// once with no values for a parameter without indices.
void forEachInstance(Database& database, const ParmDef& parm,
                     const std::function<void(const IndexTuple&)>& visit);
