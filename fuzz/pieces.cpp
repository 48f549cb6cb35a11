#include "fuzz/pieces.h"

#include <cstdio>

#include "fuzz/demand.h"
#include "startup/definition_reader.h"

std::vector<std::string> piecesOf(std::string_view text) {
  std::string copy(text);
  FILE* const stream = fmemopen(copy.data(), copy.size(), "r");
  demand(stream != nullptr, "no stream");
  std::vector<std::string> pieces;
  std::string piece;
  while (readPiece(stream, piece)) pieces.push_back(piece);
  fclose(stream);
  return pieces;
}
