// Definitions compared: names, access and indices.
#pragma once

#include "compare/difference.h"
#include "doc/model.h"

/// Adds to `differences` what is gone, new, renamed by the look of it, or has another access or
/// other indices or index values.
void compareDefinitions(const DocModel& old, const DocModel& now, Differences& differences);
