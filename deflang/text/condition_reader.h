// Condition reader: the start of a statement that may have a condition, up to its opening brace.
#pragma once

#include "deflang/text/cursor.h"
#include "deflang/text/expression_reader.h"

/// Reads "{", or "(" condition ")" "{".
class ConditionReader {
 public:
  /// Returns PARSE_DONE after the brace, PARSE_CONTINUES or PARSE_SYNTAX_ERROR.
  int read(Cursor& cursor);
  /// Hands over the condition; empty when there was none.
  Expression take() { return expression_.take(); }
  void reset();

 private:
  bool seen_ = false;  // the condition, complete; no second one may follow
  ExpressionReader expression_;
};
