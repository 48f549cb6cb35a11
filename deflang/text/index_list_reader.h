// Index list reader: the statement "index", from after the keyword.
#pragma once

#include <vector>

#include "deflang/text/cursor.h"
#include "deflang/text/record.h"

/// Reads, in braces, one or more names with commas between them.
class IndexListReader {
 public:
  /// Returns PARSE_DONE after the closing brace, PARSE_CONTINUES or PARSE_SYNTAX_ERROR.
  int read(Cursor& cursor);
  /// Hands over the statement that was read.
  IndexStatement take();
  void reset();

 private:
  // What comes next.
  enum stage_t { OPENING, NAME, SEPARATOR, END };

  int readStage(Cursor& cursor);
  int readOpening(Cursor& cursor);
  int readName(Cursor& cursor);
  int readSeparator(Cursor& cursor);

  stage_t stage_ = OPENING;
  std::vector<IndexName> names_;  // so far
  IndexStatement statement_;
};
