#include "startup/definition_reader.h"

#include <array>
#include <cerrno>
#include <cstring>

#include "deflang/definition_parser.h"
#include "sw/parm/make_definitions.h"

namespace {

int parseText(FILE* in, DefinitionText& text) {
  DefinitionParser parser;
  std::string piece;
  for (uint32_t lineNumber = 1; readPiece(in, piece); ++lineNumber) {
    if (acceptLine(parser, text, piece, lineNumber) != PARSE_DONE) return 1;
  }
  if (ferror(in) == 0) return 0;
  fprintf(stderr, "Error reading parameter definitions: %s\n", strerror(errno));
  return 1;
}

}  // namespace

bool readPiece(FILE* in, std::string& piece) {
  std::array<char, MAX_PIECE_LENGTH> buffer;
  size_t size = 0;
  while (size < buffer.size()) {
    const int character = getc_unlocked(in);
    if (character == EOF) break;
    buffer[size++] = static_cast<char>(character);
    if (character == '\n') break;
  }
  piece.assign(buffer.data(), size);
  return !piece.empty() && ferror(in) == 0;
}

int readDefinitions(FILE* in, DefinitionRegistry& registry) {
  DefinitionText text;
  printf("Parsing file.\n");
  const int result = parseText(in, text);
  if (result != 0) return result;
  printf("Making parameter definitions.\n");
  return makeDefinitions(false, text, registry);
}
