// Translation reader: the statement "valueChange", from after the keyword.
#pragma once

#include <string_view>

#include "deflang/text/cursor.h"
#include "deflang/text/quoted_text.h"
#include "deflang/text/record.h"

/// Reads, in braces, a source and a target with "->" between them, each a quoted text or a bare
/// number.
class TranslationReader {
 public:
  /// Returns PARSE_DONE after the closing brace, PARSE_CONTINUES or PARSE_SYNTAX_ERROR.
  int read(Cursor& cursor);
  /// Hands over the translation that was read.
  Translation take();
  void reset();

 private:
  // What comes next.
  enum stage_t { OPENING, SOURCE, SOURCE_TEXT, ARROW, TARGET, TARGET_TEXT, CLOSING, END };

  int readStage(Cursor& cursor);
  int expect(Cursor& cursor, std::string_view sign, stage_t next);
  int readSource(Cursor& cursor);
  int readValue(Cursor& cursor, std::string_view& value, stage_t text, stage_t next);
  int readText(Cursor& cursor, std::string_view& value, stage_t next);

  stage_t stage_ = OPENING;
  QuotedText text_;
  Translation translation_;
};
