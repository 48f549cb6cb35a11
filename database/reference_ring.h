// Reference rings: parameters that depend on one another all around, for whoever explains why
// Database::finish() has refused them.
#pragma once

#include <vector>

#include "database/database.h"

/// One step of a ring: `parm` refers to the next one of the ring, itself or by one of its indices.
struct RingStep {
  ParmEntry* parm = nullptr;
  const IndexEntry* index = nullptr;  ///< the index that names the next one, else null
};

/// A shortest ring that begins at `start`; the last step refers to `start` again. The first step
/// goes to a parameter that does not refer back, because two that name each other are no fault.
/// Empty where there is no such ring; never empty for the name that finish() gives with the result
/// 1. Takes linear time in the references of all that `start` depends on.
std::vector<RingStep> referenceRing(ParmEntry& start);
