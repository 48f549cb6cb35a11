// Parse results: what the line parser and its readers return.
#pragma once

enum parseResult_t : int {
  PARSE_DONE = 0,
  PARSE_CONTINUES = -2,  ///< the line ended first; only the readers return it
  PARSE_INVALID_ACCESS = 1,
  PARSE_SYNTAX_ERROR = 2,
  PARSE_INTERNAL_ERROR = -1,
};

/// What is told of a result other than PARSE_DONE; "Unknown error" for a number that is no result
/// of the parser.
const char* parseResultMessage(int result);
