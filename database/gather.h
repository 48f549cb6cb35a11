// Gathering: the values that a definition's variables hold for one instance, as a transaction sees
// them.
#pragma once

#include "database/database.h"
#include "database/staged_values.h"
#include "deflang/expression/variables.h"
#include "sw/parm/index_tuple.h"

/// The values of the instance `indices` of `evaluated` for those index definitions that
/// `referenced` has as well, in the index order of `referenced`.
IndexTuple sharedIndices(const ParmDef& evaluated, const IndexTuple& indices,
                         const ParmDef& referenced);

/// The index values with which the instance `indices` of `evaluated` reads the parameter `source`:
/// those that the name in the text carries; where it carries none, those that both parameters
/// share.
IndexTuple indicesOf(const VariableSource& source, const ParmDef& evaluated,
                     const IndexTuple& indices);

/// What a name means whose value, or whose P's value, is `value`: that value, or the figure of the
/// standard that it selects. OPERAND_INVALID where it selects none.
Operand operandIn(const VariableSource& source, const Operand& value);

/// What `source`, a parameter read with the index values `indices` or a constant, holds: its value,
/// or the figure of the standard that the value selects. OPERAND_INVALID where there is none.
Operand valueOf(const VariableSource& source, const IndexTuple& indices,
                const StagedValues& staged);

/// The situation of one instance of a parameter, as its own expressions see it before its index
/// values are bound. A set begins with it: the parameter's own conditions see no index value, and
/// setValue() binds them one by one, because each index sees only those before it. Its views hold
/// while the staged and committed values stay as they are.
Situation gather(const ParmEntry& entry, const IndexTuple& indices, const StagedValues& staged);

/// As gather() of the instance, with all index values bound: in it defaults and ranges are
/// evaluated. Its views hold no longer than `indices`.
Situation gatherBound(const ParmEntry& entry, const IndexTuple& indices,
                      const StagedValues& staged);

/// The situation in which an index by itself is judged; if it is shared, the one of every instance.
Situation gather(const IndexEntry& entry, const StagedValues& staged);

/// The situation of an index of one instance. `own` is the instance's own situation, in which the
/// values of the indices before this one are bound.
Situation gather(const IndexEntry& entry, const ParmEntry& evaluated, const IndexTuple& indices,
                 const Situation& own, const StagedValues& staged);
