// The line parser: definition text, one line at a time, into parameter records.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

#include "deflang/text/definition_text.h"
#include "deflang/text/parse_result.h"

/// A resumable state machine: a definition may be spread over any number of lines, and the parser
/// keeps its place in the grammar between calls.
class DefinitionParser {
 public:
  DefinitionParser();
  ~DefinitionParser();
  /// Takes in one line, its newline included, into `records`, which are the same for all lines of a
  /// text and live as long as it is read. Returns PARSE_DONE when it was accepted, complete or not;
  /// PARSE_INVALID_ACCESS for an unknown word after the name or "ctrlRO" in a "wo" record;
  /// PARSE_SYNTAX_ERROR; PARSE_INTERNAL_ERROR when the record that is being read is not among
  /// `records`. After an error `column` is the offset of the character at which the failing step
  /// started, or of the first one of a bare number that did not convert, and only reset() leads on.
  int parseLine(ParameterRecords& records, std::string_view line, uint32_t lineNumber,
                size_t& column);
  /// Back to the start of a text, whatever was left unfinished.
  void reset();

 private:
  struct State;
  std::unique_ptr<State> state_;
};

/// Takes in one line and keeps its text, unless it is blank or a comment. Prints an error to
/// standard error: the line's number, what is wrong, and the line with a caret under the column.
/// Returns the parser's result.
int acceptLine(DefinitionParser& parser, DefinitionText& text, std::string_view line,
               uint32_t lineNumber);
