// Fuzzes the grammar: any bytes, cut into pieces as standard input is.
#include <string>
#include <vector>

#include "deflang/text/definition_grammar.h"
#include "fuzz/captured_stderr.h"
#include "fuzz/demand.h"
#include "fuzz/fuzz_input.h"
#include "fuzz/fuzz_target.h"
#include "fuzz/pieces.h"
#include "fuzz/record_text.h"
#include "tests/support/lines.h"

namespace {

// How a text was read: up to which piece, with which result.
struct Reading {
  std::string records;
  int result = PARSE_DONE;
  uint32_t line = 0;
  uint32_t column = 0;

  bool operator==(const Reading&) const = default;
};

// Where a line of no meaning is put in before each piece.
enum Interleaved { NOTHING, COMMENTS, EMPTY_LINES };

Reading read(const std::vector<std::string>& pieces, Interleaved interleaved) {
  std::vector<std::string> lines;
  for (const std::string& piece : pieces) {
    if (interleaved != NOTHING) {
      lines.emplace_back(interleaved == COMMENTS ? "\t# } \" ) ]\n" : "\n");
    }
    lines.push_back(piece);
  }
  ParameterRecords records;
  TextCursor cursor(pulledFrom(lines), records.arena());
  const int result = readDefinitions(cursor, records);
  demand(result == PARSE_DONE || result == PARSE_INVALID_ACCESS || result == PARSE_SYNTAX_ERROR,
         "the reading ended with ", std::to_string(result));
  demand(cursor.position().column <= cursor.line().size(), "the caret is behind the line");
  const uint32_t linesOfPiece = interleaved == NOTHING ? 1 : 2;
  return {recordsText(records, linesOfPiece), result, cursor.position().line / linesOfPiece,
          cursor.position().column};
}

// What is printed of a refused line: its number, the reason, itself and the caret.
void expectReport(const std::vector<std::string>& pieces, const Reading& reading) {
  DefinitionText text;
  CapturedStderr captured;
  const int result = readDefinitionText(pulledFrom(pieces), text);
  const std::string printed = captured.restore();
  demand(result == reading.result, "two readings differ");
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
  const Reading reading = read(pieces, NOTHING);
  demand(read(pieces, COMMENTS) == reading, "comment lines change the reading");
  demand(read(pieces, EMPTY_LINES) == reading, "empty lines change the reading");
  expectReport(pieces, reading);
  return 0;
}
