// Gathering: the values that a definition's variables hold for one instance, as a transaction sees
// them.
#pragma once

#include "database/database.h"
#include "database/staged_values.h"
#include "deflang/expression/variables.h"
#include "sw/parm/index_tuple.h"

/// The index values that `referenced` takes from the instance `indices` of `evaluated`, in its own
/// index order: those of the index definitions that both have.
IndexTuple sharedIndices(const ParmDef& evaluated, const IndexTuple& indices,
                         const ParmDef& referenced);

/// The situation of one instance of a parameter, as its own expressions see it. Its views hold
/// while the staged and committed values stay as they are.
Situation gather(const ParmEntry& entry, const IndexTuple& indices, const StagedValues& staged);

/// The situation in which an index by itself is judged; if it is shared, the one of every instance.
Situation gather(const IndexEntry& entry, const StagedValues& staged);

/// The situation of an index of one instance. `own` is the instance's own situation, in which the
/// values of the indices before this one are bound.
Situation gather(const IndexEntry& entry, const ParmEntry& evaluated, const IndexTuple& indices,
                 const Situation& own, const StagedValues& staged);
