// The builder's step for valueChange statements.
#pragma once

#include "sw/parm/build/definition_draft.h"

/// Builds the value translations. A source with two different targets is an error; the first one
/// stays.
void buildTranslations(DefinitionDraft& draft);
