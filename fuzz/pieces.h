// Pieces: a text cut as the daemon cuts what it reads from standard input.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "deflang/text/text_cursor.h"

/// The pieces of `text` in order.
std::vector<std::string> piecesOf(std::string_view text);

/// The pieces as the lines that a cursor pulls; they live as long as they are asked for.
TextCursor::NextLine linesOf(const std::vector<std::string>& pieces);
