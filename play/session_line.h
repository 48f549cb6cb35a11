// The line of an operation, as its author wrote it and as it would be with another outcome.
#pragma once

#include <string>
#include <string_view>

#include "play/session.h"

/// The line, without its newline. A view of the file's text.
std::string_view lineOf(const Operation& operation);
/// The operation alone, from its first word to its last argument. A view of the file's text.
std::string_view operationText(const Operation& operation);
/// The line with `outcome` behind its arrow. All else stays as it is. Without an outcome there are
/// no blanks at the end of the line. A line without an arrow gets one, at `column` (in bytes from
/// 0) where there is room for it before.
std::string lineWith(const Operation& operation, std::string_view outcome, size_t column = 0);
