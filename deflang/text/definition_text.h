// What the reading of a definition text gathers.
#pragma once

#include "deflang/text/line_texts.h"
#include "deflang/text/record.h"

struct DefinitionText {
  ParameterRecords records;
  LineTexts lines;  ///< those with words, for diagnostics
};
