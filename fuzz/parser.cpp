// Fuzzes the line parser: any bytes, cut into pieces as standard input is.
#include <string>
#include <vector>

#include "deflang/text/definition_parser.h"
#include "fuzz/captured_stderr.h"
#include "fuzz/demand.h"
#include "fuzz/fuzz_input.h"
#include "fuzz/fuzz_target.h"
#include "fuzz/pieces.h"
#include "fuzz/record_text.h"

namespace {

// How a text was read: up to which piece, with which result.
struct Reading {
  std::string records;
  int result = PARSE_DONE;
  uint32_t line = 0;
  size_t column = 0;

  bool operator==(const Reading&) const = default;
};

// Where a line of no meaning is put in before each piece.
enum interleaved_t { NOTHING, COMMENTS, EMPTY_LINES };

int parse(DefinitionParser& parser, ParameterRecords& records, std::string_view piece,
          Reading& reading) {
  const int result = parser.parseLine(records, piece, reading.line, reading.column);
  demand(result == PARSE_DONE || result == PARSE_INVALID_ACCESS || result == PARSE_SYNTAX_ERROR,
         "the parser returned ", std::to_string(result));
  demand(reading.column <= piece.size(), "the caret stands behind the line");
  return result;
}

Reading read(DefinitionParser& parser, const std::vector<std::string>& pieces,
             interleaved_t interleaved) {
  ParameterRecords records;
  Reading reading;
  parser.reset();
  for (const std::string& piece : pieces) {
    ++reading.line;
    if (interleaved != NOTHING) {
      const char* const line = interleaved == COMMENTS ? "\t# } \" ) ]\n" : "\n";
      demand(parse(parser, records, line, reading) == PARSE_DONE, "an interleaved line is refused");
    }
    reading.result = parse(parser, records, piece, reading);
    if (reading.result != PARSE_DONE) break;
  }
  reading.records = recordsText(records);
  return reading;
}

// What is printed of a refused line: its number, the reason, itself and the caret.
void expectReport(const std::vector<std::string>& pieces, const Reading& reading) {
  DefinitionParser parser;
  DefinitionText text;
  CapturedStderr captured;
  int result = PARSE_DONE;
  for (uint32_t line = 1; line <= pieces.size() && result == PARSE_DONE; ++line) {
    result = acceptLine(parser, text, pieces[line - 1], line);
  }
  const std::string printed = captured.restore();
  demand(result == reading.result, "acceptLine and parseLine differ");
  if (result == PARSE_DONE) {
    demand(printed.empty(), "a text without fault is reported: ", printed);
    return;
  }
  const std::string head = "Error on line " + std::to_string(reading.line) + "\n";
  demand(printed.starts_with(head + parseResultMessage(result) + "\n"), printed);
  demand(printed.ends_with("\n" + std::string(reading.column, ' ') + "^\n"), printed);
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::vector<std::string> pieces = piecesOf(textOf(data, size));
  DefinitionParser parser;
  const Reading reading = read(parser, pieces, NOTHING);
  // In any state a comment line and an empty line mean nothing, and reset() leads back to the start
  // from any state.
  demand(read(parser, pieces, COMMENTS) == reading, "comment lines change the reading");
  demand(read(parser, pieces, EMPTY_LINES) == reading, "empty lines change the reading");
  expectReport(pieces, reading);
  return 0;
}
