// Input files: all of a file, or of standard input.
#pragma once

#include <string>

/// Reads all of the file `name` into `text`; "-" is standard input. Returns 0, or the error number
/// of what went wrong. Raises std::bad_alloc where the file does not fit into memory.
int readInputFile(const char* name, std::string& text);
