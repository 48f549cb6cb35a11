// Bare numbers: numbers that stand in a statement without parentheses.
#pragma once

#include <cstdint>

#include "deflang/text/cursor.h"

/// Reads the word up to the next stop as a number. Returns PARSE_DONE, or PARSE_SYNTAX_ERROR with
/// the cursor at the first character that belongs to no number: where a number is missing, the
/// character that stands in its place.
int readBareNumber(Cursor& cursor, const StopSet& stops, int32_t& number);
