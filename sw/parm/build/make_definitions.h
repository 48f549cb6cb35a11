// Making definitions: from the records of a definition text to registered definitions.
#pragma once

#include "deflang/text/definition_text.h"
#include "sw/parm/build/definition_registry.h"

/// Builds the definitions of `text`, registers them with `registry` and prints every diagnostic to
/// standard error, warnings included. With `checkOnly` no definition is registered.
/// Returns 0, or 1 for any failure of buildDefinitions(): it becomes the exit status.
int makeDefinitions(bool checkOnly, const DefinitionText& text, DefinitionRegistry& registry);
