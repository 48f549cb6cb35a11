// Value reader: a value that is a bare number or an expression in parentheses.
#pragma once

#include "deflang/expression/token.h"
#include "deflang/text/cursor.h"
#include "deflang/text/expression_reader.h"

class ValueReader {
 public:
  /// Reads a bare number, which ends at one of `stops`, or an expression, which does not. Returns
  /// PARSE_DONE, PARSE_CONTINUES or PARSE_SYNTAX_ERROR.
  int read(Cursor& cursor, const StopSet& stops);
  /// Hands over the value; a bare number is an expression of one token.
  Expression take();
  void reset();

 private:
  Expression number_;  // a bare one
  ExpressionReader expression_;
};
