// Record texts: what the line parser made of a text, written out so that two readings of it can be
// compared.
#pragma once

#include <string>

#include "deflang/text/record.h"

/// Everything that the records say, positions included.
std::string recordsText(const ParameterRecords& records);
