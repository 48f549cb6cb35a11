// Record texts: what was made of a text, written out so that two readings of it can be
// compared.
#pragma once

#include <cstdint>
#include <string>

#include "deflang/text/record.h"

/// Everything that the records say, positions included; of a text with so many lines for each piece
/// the number of the piece.
std::string recordsText(const ParameterRecords& records, uint32_t linesOfPiece = 1);
