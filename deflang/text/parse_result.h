// Parse results: how the reading of a definition text ends.
#pragma once

/// What TextCursor::result() says after the last reading function.
enum ParseResult : int {
  PARSE_DONE = 0,             ///< read to the end of the text, also within a definition
  PARSE_INVALID_ACCESS = 1,   ///< no access word after a name, or "ctrlRO" in a "wo" record
  PARSE_SYNTAX_ERROR = 2,     ///< anything else that does not fit
  PARSE_INTERNAL_ERROR = -1,  ///< has its message, but no step of the grammar gives it
};

/// The message of a result, as it is printed; "Unknown error" for PARSE_DONE and for a number that
/// is no result. Never null, valid for good.
const char* parseResultMessage(int result);
