// Files of values: lines as of quotedAssignment(). "-" is standard input or output.
#pragma once

#include <string>
#include <vector>

#include "ctl/service/answers.h"

/// What the file holds, in its order; empty lines are passed over. Ends the program where it cannot
/// be read, where a line is none of an assignment, and where a name is given two values.
std::vector<Assignment> readValuesFile(const std::string& path);

/// Writes the file: it has the new lines or, whatever happens, the old ones. Ends the program where
/// it cannot be written.
void writeValuesFile(const std::string& path, const std::vector<Assignment>& assignments);
