// Named values as a person reads them.
#pragma once

#include <string>

#include "check/text/finding.h"

/// "MODEL=pro title=\"\"": a value is quoted where it is empty or would not be seen to be one.
std::string joinedValues(const NamedValues& values);
