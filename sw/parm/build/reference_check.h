// The reference check: whether something has the names in a record's expressions.
#pragma once

#include <vector>

#include "deflang/expression/token.h"
#include "deflang/text/record.h"
#include "sw/parm/build/build_context.h"

/// Checks every name in `expressions` of `record`, once in each. It is an error when nothing
/// defines the name, when its index values do not fit the indices of the parameter that it names,
/// and when it names an index that `record`, a parameter, does not list. Index values are held
/// against the index definitions, so these must have been built.
void checkReferences(const ParameterRecord& record,
                     const std::vector<const Expression*>& expressions, BuildContext& context);
