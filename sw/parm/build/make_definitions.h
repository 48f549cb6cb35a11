// Making definitions: from the records of a definition text to registered definitions.
#pragma once

#include "deflang/text/definition_text.h"
#include "sw/parm/build/definition_registry.h"

/// Builds the definitions of `text`, registers them and prints every diagnostic to standard error.
/// With `checkOnly` nothing is registered. Returns 0, or 1 when a definition could not be built.
int makeDefinitions(bool checkOnly, const DefinitionText& text, DefinitionRegistry& registry);
