// Range queries: the values that one parameter instance may take, as a transaction sees things.
#pragma once

#include <functional>
#include <string_view>

#include "database/database.h"
#include "database/staged_values.h"
#include "sw/parm/bounds.h"

/// Results of queryRange besides those of BoundsExpression::evaluate (-5 to -1).
enum RangeResult : int {
  RANGE_FOUND = 0,
  RANGE_INVALID_NAME = 1,  ///< no such parameter, or index values that do not fit
  RANGE_TOO_LARGE = 2,     ///< the names that it depends on are too long, as for dependencies
  RANGE_REFUSED = -6,      ///< the instance does not exist, or a value on the way was refused
};

/// Finds the range of the instance `name` in the situation that a commit of what is staged would
/// lead to: whatever the instance depends on, from the lowest level that a staged value touches, is
/// evaluated on a scratch copy first. Nothing staged or committed changes. Returns a RangeResult
/// or the code of the range that applies.
int queryRange(Database& database, const StagedValues& staged, std::string_view name,
               BoundsParm& out);

/// What is asked of an instance in a situation with its index values bound.
using SituationVisit = std::function<void(const ParmEntry& parm, const Situation& situation)>;

/// Calls `visit` where queryRange() takes the range, with the same situation: for whoever tells
/// why. Returns a RangeResult; `visit` is not called where the instance is refused. Where a value
/// is refused on the way, the instance's own or one that it depends on, calls `refused` for the
/// instance whose value it is, in the situation in which it was judged.
int visitQueried(Database& database, const StagedValues& staged, std::string_view name,
                 const SituationVisit& visit, const SituationVisit& refused = {});
