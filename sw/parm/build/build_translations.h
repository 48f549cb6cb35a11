// The builder's step for valueChange statements.
#pragma once

#include "sw/parm/build/definition_draft.h"

/// Builds the value translations, from source text to target text. A number is one as its decimal
/// text: 0x10 and 16 are one source, "0x10" in quotes is another. A source with two different
/// targets is an error, and the first target is kept; the same translation twice is not.
void buildTranslations(DefinitionDraft& draft);
