// Staged domains: what is staged in a transaction, before its definition has judged it.
#pragma once

#include "check/proof/domain.h"
#include "sw/parm/parm_def.h"

/// What a client may set `parm` to, whatever the situation is: what is wrong there is corrected
/// only by the commit.
Domain settableDomain(const ParmDef& parm);

/// What may be staged for `parm`: that, and what a reset puts in its place, which no range limits.
Domain stagedDomain(const ParmDef& parm);
