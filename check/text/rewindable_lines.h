// Rewindable lines: the lines of a text for a cursor, which can be sent back.
#pragma once

#include <string_view>

#include "check/text/source_text.h"
#include "deflang/text/text_cursor.h"

/// Gives a text in the pieces in which the daemon reads it, and tells the cursor where in the whole
/// lines they are.
class RewindableLines {
 public:
  /// `text` is that of `source`, perhaps with some of its bytes changed.
  RewindableLines(const SourceText& source, std::string_view text) : source_(source), text_(text) {}

  /// The next piece, for `cursor`. Returns false at the end of the text.
  bool next(TextCursor& cursor, std::string_view& piece);
  /// Brings `cursor` to the byte `at`, which is on no comment line unless it begins the line.
  void bring(TextCursor& cursor, size_t at);

 private:
  const SourceText& source_;
  std::string_view text_;
  size_t next_ = 0;
  Position place_ = {1, 0};  // of the next piece
};
