// Ring walks: situations of parameters that refer to each other.
#pragma once

#include "check/proof/attempt.h"
#include "check/proof/healthy.h"

/// What the instances of an attempt's cone may come to hold from their defaults on, by base name.
/// All values of the cone are unset afterwards.
DomainsByName ringDomains(Attempt& attempt, Staging staging);

/// Values that carry each other count only where the defaults and one commit after the other lead
/// there: visits all situations of a small ring, and some of a large one. A ring that does not rest
/// after the start is astray: that is told of the start. Of the result, the
/// indices are not set. All values of the cone are unset afterwards.
HealthyResult walkFromDefaults(Attempt& attempt, TrialLimit& limit);
