// Tokens: an expression as the definition text has it, before it is checked.
//
// From `(gain[1] + 3)`, which begins in column 0 of line 7, come three tokens:
//
//   at 7:1  TOKEN_VARIABLE  text "gain[1]"
//   at 7:9  OP_ADD
//   at 7:11 TOKEN_NUMBER    number 3
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

/// A place in the definition text. Lines count from 1, columns are byte offsets from 0.
struct Position {
  uint32_t line = 0;
  uint32_t column = 0;
};

/// What a token is, where it is no operator. The numbers share one range with the codes of the
/// operators (see operators.h), so that a token and a step of a program each need only
/// one. -1 is left out: it is the kind of an undefined operand.
enum TokenKind : int32_t {
  TOKEN_OPEN = -3,      ///< "("
  TOKEN_CLOSE = -2,     ///< ")"
  TOKEN_NUMBER = 19,    ///< also a minus sign with the number behind it
  TOKEN_STRING = 20,    ///< a quoted text
  TOKEN_VARIABLE = 21,  ///< a name, with its index values in brackets
};

/// One element of an expression, in source order.
struct Token {
  Position at;
  int32_t kind = TOKEN_NUMBER;  ///< a TokenKind or an operator's code
  int32_t number = 0;           ///< of a number
  std::string_view text;        ///< of a string, without its quotes; the name of a variable
};

/// An expression as it was read, without the parentheses around it. It owns none of its tokens and
/// texts: they are in the arena that it was read into (ParameterRecords::arena() for a definition
/// text), and valid as long as that. To copy it is cheap.
struct Expression {
  std::span<const Token> tokens;

  /// Whether it is `()`, or was not given: which of the two is not kept.
  [[nodiscard]] bool empty() const { return tokens.empty(); }
};
