// Solving a cone: the goal of an attempt with all that its cone has to keep, as a question for the
// solver.
#pragma once

#include "check/proof/anywhere.h"
#include "check/proof/attempt.h"

/// Whether instances of the parameter are there in some situations only.
bool mayBeAbsent(const ParmEntry& parm);

/// Asks the solver for values of the cone's instances, each of which is there and within its
/// ranges, with which the goal is met. The assignment is by full name. A parameter that is among
/// `least` has a value of the domain there. `withAbsent`: what may be absent has any value.
AnywhereResult solveCone(Attempt& attempt, const DomainsByName& least, bool withAbsent = false);
