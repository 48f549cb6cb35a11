// Caret line: a line of the definition text repeated in a report, with a caret under one column.
#pragma once

#include <cstddef>
#include <cstdio>
#include <string_view>

/// Writes `line`, a newline unless it ends in one, as many blanks as `column` (a byte offset), a
/// caret and a newline.
void printCaretLine(FILE* out, std::string_view line, size_t column);
