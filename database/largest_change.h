// The largest change: what a commit of one parameter alone may bring about.
#pragma once

#include "database/database.h"
#include "database/plan.h"

/// A parameter and what follows from a change of it.
struct LargestChange {
  const ParmEntry* parm = nullptr;
  Extent extent;
};

/// Finds the parameter whose change is the most work. Only where all parameters together pass a
/// limit of a commit is it looked for; otherwise, and in a text without parameters, `parm` is null.
/// The search ends after MAX_WALKED_DEPENDENTS with what was found until then.
LargestChange findLargestChange(Database& database);

/// How many dependents the search walks over: about as many nanoseconds, ten times.
constexpr size_t MAX_WALKED_DEPENDENTS = 20'000'000;

/// Tells the system log of a change that no commit takes, with the parameter's name.
void reportLargestChange(Database& database);
