// Output files: all of a file at once, or standard output.
#pragma once

#include <string>

/// Whether writeOutputFile() will be able to open the file, without touching it: 0, or the error
/// number of what speaks against it.
int whyNotWritable(const std::string& name);

/// Writes `text` to the file `name`, in place of what it has; "-" is standard output. Returns 0, or
/// the error number of what went wrong.
int writeOutputFile(const std::string& name, const std::string& text);
