// Ring walks: situations of parameters that refer to each other.
#pragma once

#include "check/proof/attempt.h"

/// What the instances of an attempt's cone may come to hold from their defaults on, by base name;
/// nullopt where one has no value to begin from. All values of the cone are unset afterwards.
std::optional<DomainsByName> ringDomains(Attempt& attempt);

/// What a walk has come to.
enum RingWalkResult {
  RING_MEETS_GOAL,      ///< the situation is in the result
  RING_NEVER_MEETS_IT,  ///< proved: no values that follow from the defaults can
  RING_UNDECIDED,
};

/// Values that carry each other count only where the defaults and one change after the other lead
/// there: tries some changes, from the defaults on. With RING_MEETS_GOAL, `situation` holds the
/// values of the cone. All values of the cone are unset afterwards.
RingWalkResult walkFromDefaults(Attempt& attempt, TrialLimit& limit, NamedValues& situation);
