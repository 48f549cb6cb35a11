#include "check/text/rewindable_lines.h"

#include "deflang/text/text_pieces.h"

bool RewindableLines::next(TextCursor& cursor, std::string_view& piece) {
  piece = firstPiece(text_.substr(next_));
  if (piece.empty()) return false;
  cursor.startLineAt(place_);
  next_ += piece.size();
  if (piece.ends_with('\n')) {
    place_ = {place_.line + 1, 0};
  } else {
    place_.column += static_cast<uint32_t>(piece.size());
  }
  return true;
}

void RewindableLines::bring(TextCursor& cursor, size_t at) {
  place_ = source_.positionOf(at);
  const uint32_t within = at == text_.size() ? 0 : place_.column % MAX_PIECE_LENGTH;
  place_.column -= within;
  next_ = at - within;
  if (cursor.pullLine()) cursor.advance(within);
}
