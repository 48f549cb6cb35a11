// Static bounds: what the constant ranges of a definition say of a value, whatever the situation.
#pragma once

#include <string>

#include "sw/parm/index_def.h"

/// Whether one of the ranges is computed at run time, so that constants do not tell.
bool hasRunTimeRange(const IndexDef& definition);

/// Whether no range allows `value`, which is not translated: the one without a condition refuses
/// it, or there is none and each of the others does. Not for definitions with a run-time range.
bool isOutside(const IndexDef& definition, const std::string& value);

/// Whether some range allows `value`, in the same way: the one without a condition, or where there
/// is none, one of the others.
bool isInside(const IndexDef& definition, const std::string& value);

/// Whether both accept one and the same value.
bool shareValue(const BoundsParm& one, const BoundsParm& other);
