// Evaluating one staged entry: what commit and a range query do at each step of their plan.
#pragma once

#include "database/index_situations.h"
#include "database/staged_values.h"
#include "sw/parm/set_value.h"

/// Sets the value of `entry` in its present situation and leaves in the entry what the parameter
/// holds afterwards: the value as corrected, or the committed one when it was refused, so that
/// nobody who depends on it sees a refused value. An instance that does not exist and that no
/// client staged is passed over, as one that may not be written: SET_NOT_STORED. In a dry run
/// nothing is stored. Counts the work, and raises WorkExceeded, before it does anything.
SetCode evaluate(StagedEntry& entry, IndexSituations& situations, bool dryRun);

/// Gives an entry what its parameter holds, forced, as if nobody had staged anything.
void takeCommitted(StagedEntry& entry, IndexSituations& situations);
