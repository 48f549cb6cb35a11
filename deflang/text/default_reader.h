// Default reader: the statement "default", from after the keyword.
#pragma once

#include "deflang/text/condition_reader.h"
#include "deflang/text/cursor.h"
#include "deflang/text/quoted_text.h"
#include "deflang/text/record.h"
#include "deflang/text/value_reader.h"

/// Reads an optional condition and, in braces, a quoted text or a value.
class DefaultReader {
 public:
  /// Returns PARSE_DONE after the closing brace, PARSE_CONTINUES or PARSE_SYNTAX_ERROR.
  int read(Cursor& cursor);
  /// Hands over the statement that was read.
  DefaultStatement take();
  void reset();

 private:
  // What comes next.
  enum stage_t { CONDITION, START, TEXT, VALUE, CLOSING, END };

  int readStage(Cursor& cursor);
  int readCondition(Cursor& cursor);
  int readStart(Cursor& cursor);
  int readText(Cursor& cursor);
  int readValue(Cursor& cursor);
  int readClosing(Cursor& cursor);

  stage_t stage_ = CONDITION;
  ConditionReader condition_;
  QuotedText text_;
  ValueReader value_;
  DefaultStatement statement_;
};
