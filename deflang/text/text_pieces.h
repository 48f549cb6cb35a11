// Text pieces: the pieces in which a definition text is read, each counted as a line.
#pragma once

#include <cstddef>
#include <string_view>

/// The most bytes of one piece of the text, its newline included. A longer line is several pieces,
/// and each counts as a line, also for the line numbers in the reports of the daemon.
constexpr size_t MAX_PIECE_LENGTH = 1024;

/// May come at the very start of a text, and is passed over.
constexpr std::string_view BYTE_ORDER_MARK = "\xEF\xBB\xBF";

/// The first piece of `text`: its first line with its newline, or the first MAX_PIECE_LENGTH bytes
/// of a longer one; empty where `text` is.
constexpr std::string_view firstPiece(std::string_view text) {
  text = text.substr(0, MAX_PIECE_LENGTH);
  const size_t newline = text.find('\n');
  return text.substr(0, newline == std::string_view::npos ? newline : newline + 1);
}
