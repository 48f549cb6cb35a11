// Tables: rows whose columns stand below each other.
#pragma once

#include <string>
#include <vector>

/// The rows as lines. Columns are two blanks apart; a line has no blanks at its end.
std::vector<std::string> tableLines(const std::vector<std::vector<std::string>>& rows);
