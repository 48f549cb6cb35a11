// Expression reader: an expression in parentheses, from definition text into tokens.
#pragma once

#include <cstddef>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "deflang/expression/token.h"
#include "deflang/text/cursor.h"
#include "deflang/text/quoted_text.h"

class ExpressionReader {
 public:
  /// Reads from the opening parenthesis to its partner and the white space that follows. Returns
  /// PARSE_DONE, PARSE_CONTINUES, or PARSE_SYNTAX_ERROR where no parenthesis opens or something
  /// stands that is neither operator nor operand. Whether operators and operands make an
  /// expression is not looked at.
  int read(Cursor& cursor);
  /// Whether the opening parenthesis has been read and its partner has not.
  [[nodiscard]] bool isOpen() const { return depth_ > 0; }
  /// Hands over the expression that was read; a minus sign that can only belong to the number after
  /// it is part of that number.
  Expression take();
  void reset();

 private:
  int readElement(Cursor& cursor);
  int readQuoted(Cursor& cursor);
  int readSign(Cursor& cursor);
  int readOperand(Cursor& cursor, std::string_view word);
  [[nodiscard]] bool continuesName(std::string_view word) const;
  int openString(Cursor& cursor);
  int openSuffix(Cursor& cursor);
  Token& addToken(const Cursor& cursor, int32_t kind);
  [[nodiscard]] std::string_view lastName() const;
  void growName(std::initializer_list<std::string_view> parts);
  void endName(const Cursor& cursor);
  void finish(const Cursor& cursor);

  std::vector<Token> tokens_;  // so far
  std::string grownName_;      // of the last token, a variable with index values
  Expression expression_;      // once it is complete
  QuotedText string_;
  QuotedText suffix_{'[', ']'};  // of the variable that is the last token
  size_t depth_ = 0;             // parentheses that are open
};
