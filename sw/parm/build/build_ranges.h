// The builder's steps for range statements.
#pragma once

#include "sw/parm/build/definition_draft.h"

/// Builds the base and the conditional bounds from the rangeValid statements.
///
/// A statement with a condition becomes conditional bounds. The statements without one are one set:
/// those with constant items only make up the base bounds; once one of them has a run-time item,
/// all items of the set also become one run-time range, which always applies, at the place of the
/// first statement with such an item.
///
/// A condition that is constantly 0 is reported as a warning and fails the step, unless it names a
/// command-line constant.
void buildRangeValid(DefinitionDraft& draft);

/// Builds the documented ranges from the rangeDoc statements: those with a condition, then all
/// others as one set, which always applies. Reports as buildRangeValid.
void buildRangeDoc(DefinitionDraft& draft);
