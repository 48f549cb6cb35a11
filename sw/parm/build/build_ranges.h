// The builder's steps for range statements.
#pragma once

#include "sw/parm/build/definition_draft.h"

/// Builds the base and the conditional bounds from the rangeValid statements.
///
/// A statement with a condition becomes conditional bounds. The statements without a condition are
/// one set: those with constant items only make up the base bounds; once one of them has a run-time
/// item, all items of the set also become one run-time range, which always applies, at the place of
/// the first statement with such an item. So from
///
///   rangeValid { 1 }  rangeValid (mode) { 2 }  rangeValid { (lo) }  rangeValid (mode) { 4 }
///
/// come the base bounds { 1 }, and the conditional bounds { 2 } while mode is true, { 1, (lo) }
/// always, and { 4 } while mode is true.
///
/// A condition that is constantly not 0 counts as no condition. One that is constantly 0 is
/// reported as a warning and yet fails the step, unless it names a command-line constant; its
/// statement is left out, and what it holds is not looked at.
void buildRangeValid(DefinitionDraft& draft);

/// Builds the documented ranges, which answer range queries and limit no value, from the rangeDoc
/// statements: those with a condition in their order, then all others as one set, which always
/// applies. Reports what buildRangeValid() reports.
void buildRangeDoc(DefinitionDraft& draft);
