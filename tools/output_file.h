// Output files: all of a file at once, or standard output.
#pragma once

#include <string>

/// Writes `text` to the file `name`, in place of what it has; "-" is standard output. Returns 0, or
/// the error number of what went wrong.
int writeOutputFile(const std::string& name, const std::string& text);
