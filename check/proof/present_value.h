// Present values: what an expression of the text gives in what the engine holds just now.
#pragma once

#include "check/proof/compiled_text.h"
#include "check/proof/reader.h"
#include "database/staged_values.h"

/// The value of `expression` for `reader`, with the committed values and what is staged.
Value presentValue(const CompiledExpression& expression, const Reader& reader,
                   const StagedValues& staged);
