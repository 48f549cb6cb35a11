// Ranges in words.
#pragma once

#include <string>

#include "ctl/service/answers.h"

/// What the instance takes: "0..9, 12, off", its texts as quotedWord(); "any value" where it is not
/// limited, "nothing" where it is and nothing is allowed, and "unknown" where the limits cannot be
/// computed.
std::string rangeText(const InstanceState& state);

/// Whether `value` is in what the instance takes. Not where its limits cannot be computed.
bool isAllowed(const InstanceState& state, const std::string& value);
