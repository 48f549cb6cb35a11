// The builder's step for index statements.
#pragma once

#include "sw/parm/build/definition_draft.h"

/// Resolves the index list of a parameter: its first index statement. An unknown name is left out
/// and reported as an error, with a line of its own on standard error unless only diagnostics are
/// made; likewise the name of a parameter. Further statements are reported as a warning.
void buildIndices(DefinitionDraft& draft);

/// Warns about an index that has an index list. It is of no use to an index.
void warnAboutIndices(DefinitionDraft& draft);
