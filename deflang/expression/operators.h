// Operators: their texts, codes and precedence, and what they make of numbers and texts.
//
// All functions here take a code as it is in a token or a program, so any number: what is no
// operator has no result. None of them allocates memory.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

/// The codes share one range with the token kinds (see token.h).
enum OperatorCode : int32_t {
  OP_LOGICAL_OR = 0,      ///< ||, the loosest
  OP_LOGICAL_AND = 1,     ///< &&
  OP_BIT_OR = 2,          ///< |
  OP_BIT_XOR = 3,         ///< ^
  OP_BIT_AND = 4,         ///< &
  OP_EQUAL = 5,           ///< ==
  OP_NOT_EQUAL = 6,       ///< !=
  OP_LESS = 7,            ///< <
  OP_GREATER = 8,         ///< >
  OP_LESS_EQUAL = 9,      ///< <=
  OP_GREATER_EQUAL = 10,  ///< >=
  OP_SHIFT_LEFT = 11,     ///< <<
  OP_SHIFT_RIGHT = 12,    ///< >>, the sign stays
  OP_ADD = 13,            ///< +; joins texts
  OP_SUBTRACT = 14,       ///< -
  OP_MULTIPLY = 15,       ///< *
  OP_DIVIDE = 16,         ///< /, toward 0
  OP_REMAINDER = 17,      ///< %, with the sign of the left operand
  OP_CONTAINS = 18,       ///< $, whether the left text contains the right one
};

/// Whether `kind` is the code of an operator and not a TokenKind.
bool isOperator(int32_t kind);
/// Whether the operator has a result for texts, other than the one of the numbers at their starts:
/// == != < > <= >= and $.
bool comparesTexts(int32_t code);

/// An operator or parenthesis at the start of a text.
struct OperatorText {
  std::string_view text;  ///< its one or two bytes
  int32_t code;           ///< an OperatorCode, TOKEN_OPEN or TOKEN_CLOSE
};

/// The operator or parenthesis at the start of `rest`; the longer one where two fit: "<<" for
/// "<<2". Returns nullopt where `rest` begins with neither. The text of an operator is valid for
/// good, that of a parenthesis as long as `rest`.
std::optional<OperatorText> operatorAt(std::string_view rest);

/// The text of an operator, valid for good; empty where `code` is no operator.
std::string_view operatorText(int32_t code);

/// The precedence level of an operator, from 0 (binds most tightly) to 10; -1 where `code` is no
/// operator. Operators of one level bind from left to right.
int precedence(int32_t code);

/// Applies an operator other than OP_CONTAINS to two numbers. Arithmetic wraps to 32 bits;
/// comparisons and logic give 1 or 0. A shift by less than 0 or more than 31 moves every bit out:
/// `1 << 40` is 0 and `-8 >> 40` is -1.
/// Returns nullopt for a division or remainder by 0, for OP_CONTAINS, and where `code` is no
/// operator.
std::optional<int32_t> calculate(int32_t code, int32_t left, int32_t right);

/// The result of an operator when only one of its operands, `defined`, has a value. It does not
/// matter on which side that is. With an undefined u: `0 & u` and `0 && u` are 0, `-1 | u` is -1,
/// and `5 || u` is 5 (not 1: `||` hands on the value that decides).
/// Returns nullopt in every other case.
std::optional<int32_t> absorb(int32_t code, int32_t defined);

/// Compares two texts byte by byte, with bytes from 0 to 255, or for OP_CONTAINS looks for `right`
/// within `left`; every text contains the empty one. Returns 1 or 0, or nullopt for any other code.
/// Takes linear time.
std::optional<int32_t> compareTexts(int32_t code, std::string_view left, std::string_view right);
