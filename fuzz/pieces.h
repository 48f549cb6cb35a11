// Pieces: a text cut as the daemon cuts what it reads from standard input.
#pragma once

#include <string>
#include <string_view>
#include <vector>

/// The pieces of `text` in order.
std::vector<std::string> piecesOf(std::string_view text);
