// Definition text: everything that the reading of a text gathers for the builder.
#pragma once

#include "deflang/text/line_texts.h"
#include "deflang/text/record.h"

/// readDefinitionText() fills it, makeDefinitions() builds definitions from it. These keep no view
/// of it, so it goes when they are built.
struct DefinitionText {
  ParameterRecords records;  ///< one for each name
  LineTexts lines;           ///< the lines with words, for the carets of diagnostics
};
