// Tokens: an expression as the definition text has it, before it is checked.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

/// A place in the definition text. Lines count from 1, columns are byte offsets from 0.
struct Position {
  uint32_t line = 0;
  uint32_t column = 0;
};

/// What a token is, where it is no operator (operators.h has their codes, 0 to 18). The last three
/// are also the kinds of an operand.
enum TokenKind : int32_t {
  TOKEN_OPEN = -3,
  TOKEN_CLOSE = -2,
  TOKEN_NUMBER = 19,
  TOKEN_STRING = 20,
  TOKEN_VARIABLE = 21,
};

/// One element of an expression, in source order.
struct Token {
  Position at;
  int32_t kind = TOKEN_NUMBER;  ///< a TokenKind or an operator's code
  int32_t number = 0;           ///< of a number
  std::string_view text;        ///< of a string; the name of a variable
};

/// An expression as it was read, the parentheses around it left out. Its tokens and their texts
/// live in the memory of the records that it was read for.
struct Expression {
  std::span<const Token> tokens;

  [[nodiscard]] bool empty() const { return tokens.empty(); }
};
