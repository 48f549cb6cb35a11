// The line parser: definition text, one line at a time, into parameter records.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

#include "deflang/line_texts.h"
#include "deflang/record.h"

/// What the reading of a definition text gathers.
struct DefinitionText {
  ParameterRecords records;
  LineTexts lines;
};

/// Results of the parser and its parts.
enum parseResult_t : int {
  PARSE_DONE = 0,
  PARSE_CONTINUES = -2,  ///< the line ended first; only the parts return it
  PARSE_INVALID_ACCESS = 1,
  PARSE_SYNTAX_ERROR = 2,
  PARSE_INTERNAL_ERROR = -1,
};

/// A resumable state machine: a definition may be spread over any number of lines, and the parser
/// keeps its place in the grammar between calls.
class DefinitionParser {
 public:
  DefinitionParser();
  ~DefinitionParser();
  /// Takes in one line, its newline included. Returns PARSE_DONE when it was accepted, otherwise
  /// an error, and in `column` the offset of the character at which parsing stopped.
  int parseLine(ParameterRecords& records, std::string_view line, uint32_t lineNumber,
                size_t& column);
  /// Back to the start of a text.
  void reset();

 private:
  struct State;
  std::unique_ptr<State> state_;
};

/// Takes in one line and keeps its text; prints an error with the line and a caret to standard
/// error. Returns the parser's result.
int acceptLine(DefinitionParser& parser, DefinitionText& text, std::string_view line,
               uint32_t lineNumber);
