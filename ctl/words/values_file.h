// Files of values: lines as of quotedAssignment(). "-" is standard input or output.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ctl/service/answers.h"

/// What the file holds, in its order; empty lines are passed over. Ends the program where it cannot
/// be read, where a line is none of an assignment, and where a name is given two values.
std::vector<Assignment> readValuesFile(const std::string& path);

/// What any file of up to 128 MiB holds; nullopt where it cannot be read, and `error` says why.
std::optional<std::string> tryReadFile(const std::string& path, std::string& error);

/// As readValuesFile(), but where it would end the program, that is in `error`.
std::optional<std::vector<Assignment>> tryReadValuesFile(const std::string& path,
                                                         std::string& error);

/// What a file with these values holds.
std::string valuesText(const std::vector<Assignment>& assignments);
/// Writes any file: it has the new text or, whatever happens, the old one. Returns whether it is
/// done; otherwise errno says why not.
bool tryWriteFile(const std::string& path, std::string_view text);

/// Writes the file: it has the new lines or, whatever happens, the old ones. Ends the program where
/// it cannot be written.
void writeValuesFile(const std::string& path, const std::vector<Assignment>& assignments);
