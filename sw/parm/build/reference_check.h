// The reference check: whether the names in a record's expressions are those of something.
#pragma once

#include <vector>

#include "deflang/expression/token.h"
#include "deflang/text/record.h"
#include "sw/parm/build/build_context.h"

/// Checks every name in `expressions` of `record`, once in each expression. These are errors:
///
///   ctrlRO (nobody)      neither the text nor the command line defines the name
///   ctrlRO (gain[3])     index values that do not fit the indices of gain, in number or in value
///   ctrlRO (channel)     an index that `record`, a parameter, does not list; an index may name any
///   ctrlRO (channel[1])  an index with index values
///
/// Only the first index statement of a parameter counts. Index values are translated and judged by
/// the base bounds of the index definitions, so all indices have to be registered before.
void checkReferences(const ParameterRecord& record,
                     const std::vector<const Expression*>& expressions, BuildContext& context);
