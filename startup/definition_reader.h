// The reading of the definition text, from a stream to registered definitions.
#pragma once

#include <cstdio>
#include <string>

#include "sw/parm/build/definition_registry.h"

/// The most bytes that one piece of the text has.
constexpr size_t MAX_PIECE_LENGTH = 1024;

/// Reads the next piece: a line with its newline, or the next 1024 bytes of a longer one. NUL bytes
/// are kept. Waits for a stream that has none yet, also where it is a non-blocking one. Returns
/// false at the end of the stream, and where it cannot be read: ferror(in) is set then, and errno
/// tells why.
bool readPiece(FILE* in, std::string& piece);

/// As readPiece, for the first piece of a text: a byte order mark in front of it is left out, and
/// what follows is read as if there was none.
bool readFirstPiece(FILE* in, std::string& piece);

/// Reads the definition text from `in`, each piece counting as a line, and builds its definitions.
/// Reading stops at the first line that is refused. Returns 0, or 1 for a text that is refused or
/// cannot be read to its end, or whose definitions cannot be built; the report is then on standard
/// error.
int readDefinitions(FILE* in, DefinitionRegistry& registry);
