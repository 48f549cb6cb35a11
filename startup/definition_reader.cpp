#include "startup/definition_reader.h"

#include <poll.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <string_view>
#include <utility>

#include "deflang/text/comments.h"
#include "deflang/text/definition_grammar.h"
#include "sw/parm/build/make_definitions.h"

namespace {

// Whether reading goes on after an end or an error; waits where a descriptor that does not block
// has no bytes yet. Whoever shares a descriptor shares its mode, so the mode is left as it is.
bool goesOn(FILE* in) {
  if (ferror(in) == 0) return false;
  if (errno == EAGAIN) {
    pollfd waiting = {.fd = fileno(in), .events = POLLIN, .revents = 0};
    // Where poll() fails, the next attempt to read tells why.
    static_cast<void>(poll(&waiting, 1, -1));
  } else if (errno != EINTR) {
    return false;
  }
  clearerr(in);
  return true;
}

int nextCharacter(FILE* in) {
  int character = getc_unlocked(in);
  while (character == EOF && goesOn(in)) character = getc_unlocked(in);
  return character;
}

// Reads the rest of a piece of which `piece` has the beginning, which may be empty. Returns false
// where the piece is empty or the stream cannot be read.
bool readRest(FILE* in, std::string& piece) {
  std::array<char, MAX_PIECE_LENGTH> buffer;
  const size_t room = buffer.size() - piece.size();
  size_t size = 0;
  while (size < room) {
    const int character = nextCharacter(in);
    if (character == EOF) break;
    buffer[size++] = static_cast<char>(character);
    if (character == '\n') break;
  }
  piece.append(buffer.data(), size);
  return !piece.empty() && ferror(in) == 0;
}

int parseText(FILE* in, DefinitionText& text, LeadingComments& comments) {
  std::string piece;
  bool isFirst = true;
  const auto nextLine = [&](std::string_view& line) {
    const bool isRead =
        std::exchange(isFirst, false) ? readFirstPiece(in, piece) : readPiece(in, piece);
    line = piece;
    if (isRead) comments.add(piece);
    return isRead;
  };
  if (readDefinitionText(nextLine, text) != PARSE_DONE) return 1;
  if (ferror(in) == 0) return 0;
  fprintf(stderr, "Error reading parameter definitions: %s\n", strerror(errno));
  return 1;
}

void keepDescriptions(const DefinitionText& text, const LeadingComments& comments,
                      DefinitionRegistry& registry) {
  for (const ParameterRecord* const record : text.records.inNameOrder()) {
    const std::string_view description = comments.before(record->line);
    if (!description.empty()) registry.keepDescription(record->name, description);
  }
}

}  // namespace

bool readPiece(FILE* in, std::string& piece) {
  piece.clear();
  return readRest(in, piece);
}

bool readFirstPiece(FILE* in, std::string& piece) {
  const bool isRead = readPiece(in, piece);
  if (!isRead || !piece.starts_with(BYTE_ORDER_MARK)) return isRead;
  piece.erase(0, BYTE_ORDER_MARK.size());
  return piece.ends_with('\n') || readRest(in, piece);
}

int loadDefinitions(FILE* in, DefinitionRegistry& registry) {
  DefinitionText text;
  printf("Parsing file.\n");
  LeadingComments comments;
  int result = parseText(in, text, comments);
  if (result != 0) return result;
  printf("Making parameter definitions.\n");
  result = makeDefinitions(false, text, registry);
  if (result == 0) keepDescriptions(text, comments, registry);
  return result;
}
