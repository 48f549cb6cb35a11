// The builder's step for index statements.
#pragma once

#include "sw/parm/build/definition_draft.h"

/// Resolves the index list of a parameter: the names of its first index statement, in their order.
/// The indices have been registered before. A name that the text does not define, or that is a
/// parameter, is left out and reported as an error; unless only diagnostics are made, a line
/// about the text tells it as well. A second statement is reported as a warning, further ones are
/// not.
void buildIndices(DefinitionDraft& draft);

/// Warns about an index that has an index statement: an index is not indexed, so the list is not
/// looked at.
void warnAboutIndices(DefinitionDraft& draft);
