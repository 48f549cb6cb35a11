// Caret line: a line of the definition text repeated in a report, with a caret under one column.
#pragma once

#include <cstddef>
#include <cstdio>
#include <string_view>

/// Writes `line`, a newline unless it ends in one, as many blanks as `column` says, a caret and a
/// newline, all in one write. For a line "gain xx {" and column 5:
///
///   gain xx {
///        ^
///
/// `column` is a byte offset from 0, also beyond the end of the line. A tab counts as one byte, so
/// behind tabs the caret may be left of its character. A failed write is not reported.
void printCaretLine(FILE* out, std::string_view line, size_t column);
