// The reading of the definition text, from a stream to registered definitions.
//
// Runs once, at start-up, in a process that has no main loop yet: so it may wait.
#pragma once

#include <cstdio>
#include <string>

#include "deflang/text/text_pieces.h"
#include "sw/parm/build/definition_registry.h"

/// Reads the next piece into `piece`: a line with its newline, or the next 1024 bytes of a longer
/// line. NUL bytes are kept. Waits for a stream that has no bytes yet, also where its descriptor
/// does not block, and goes on after a signal. Returns true for a piece of 1 byte or more. Returns
/// false at the end of the stream, and where it cannot be read: ferror(in) is set then, and errno
/// tells why.
bool readPiece(FILE* in, std::string& piece);

/// As readPiece(), for the first piece of a text: a byte order mark (EF BB BF) in front is left out
/// and does not count among the 1024 bytes.
bool readFirstPiece(FILE* in, std::string& piece);

/// Reads the definition text from `in`, each piece counting as a line, and builds its definitions.
/// Reading stops at the first line that is refused. Progress goes to standard output. Returns 0, or
/// 1 for a text that is refused or cannot be read to its end, or whose definitions cannot be built;
/// the report is then on standard error. `in` stays open. Raises std::bad_alloc where memory is
/// exhausted.
int loadDefinitions(FILE* in, DefinitionRegistry& registry);
