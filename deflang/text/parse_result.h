// Parse results: how the reading of a definition text ends.
#pragma once

enum ParseResult : int {
  PARSE_DONE = 0,
  PARSE_INVALID_ACCESS = 1,
  PARSE_SYNTAX_ERROR = 2,
  PARSE_INTERNAL_ERROR = -1,  ///< has its text, but no step of the grammar gives it
};

/// What is told of a result other than PARSE_DONE; "Unknown error" for a number that is no
/// result.
const char* parseResultMessage(int result);
