// Range reader: the statements "rangeValid" and "rangeDoc", from after the keyword.
#pragma once

#include <vector>

#include "deflang/text/condition_reader.h"
#include "deflang/text/cursor.h"
#include "deflang/text/quoted_text.h"
#include "deflang/text/record.h"
#include "deflang/text/value_reader.h"

/// Reads an optional condition and, in braces, any number of items with commas between them: a
/// quoted text, a value, or two values with ".." between them.
class RangeReader {
 public:
  /// Returns PARSE_DONE after the closing brace, PARSE_CONTINUES or PARSE_SYNTAX_ERROR.
  int read(Cursor& cursor);
  /// Hands over the statement that was read.
  RangeStatement take();
  void reset();

 private:
  // What comes next.
  enum stage_t { CONDITION, FIRST_ITEM, ITEM, TEXT, LOWER, SPAN, UPPER, SEPARATOR, END };

  int readStage(Cursor& cursor);
  int readCondition(Cursor& cursor);
  int readFirstItem(Cursor& cursor);
  int readItem(Cursor& cursor);
  int readText(Cursor& cursor);
  int readLower(Cursor& cursor);
  int readSpan(Cursor& cursor);
  int readUpper(Cursor& cursor);
  int readSeparator(Cursor& cursor);

  stage_t stage_ = CONDITION;
  ConditionReader condition_;
  QuotedText text_;
  ValueReader value_;
  std::vector<RangeItem> items_;  // so far; the last one may be incomplete
  RangeStatement statement_;
};
