// Operators: their texts, codes and precedence, and what they make of numbers and texts.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

enum OperatorCode : int32_t {
  OP_LOGICAL_OR = 0,
  OP_LOGICAL_AND = 1,
  OP_BIT_OR = 2,
  OP_BIT_XOR = 3,
  OP_BIT_AND = 4,
  OP_EQUAL = 5,
  OP_NOT_EQUAL = 6,
  OP_LESS = 7,
  OP_GREATER = 8,
  OP_LESS_EQUAL = 9,
  OP_GREATER_EQUAL = 10,
  OP_SHIFT_LEFT = 11,
  OP_SHIFT_RIGHT = 12,
  OP_ADD = 13,
  OP_SUBTRACT = 14,
  OP_MULTIPLY = 15,
  OP_DIVIDE = 16,
  OP_REMAINDER = 17,
  OP_CONTAINS = 18,
};
constexpr int32_t OPERATOR_COUNT = 19;

constexpr bool isOperator(int32_t kind) { return kind >= 0 && kind < OPERATOR_COUNT; }
constexpr bool isComparison(int32_t kind) { return kind >= OP_EQUAL && kind <= OP_GREATER_EQUAL; }

/// An operator or parenthesis at the start of a text.
struct OperatorText {
  std::string_view text;
  int32_t code;  ///< an OperatorCode, TOKEN_OPEN or TOKEN_CLOSE
};

/// The operator or parenthesis at the start of `rest`; the longer one where two fit. Nothing where
/// there is none.
std::optional<OperatorText> operatorAt(std::string_view rest);

/// The precedence level of an operator, 0 (binds tightest) to 10; -1 for what is no operator.
int precedence(int32_t code);

/// Applies an operator other than OP_CONTAINS to two numbers. Arithmetic wraps to 32 bits,
/// comparisons give 1 or 0, a shift by less than 0 or more than 31 moves every bit out.
/// Nothing for a division by 0 and for what is no operator.
std::optional<int32_t> calculate(int32_t code, int32_t left, int32_t right);

/// What an operator gives when only one of its operands is defined: `defined` decides alone in
/// `0 & u`, `-1 | u`, `0 && u`, and in `5 || u`, which gives 5 and not 1. Nothing otherwise.
std::optional<int32_t> absorb(int32_t code, int32_t defined);

/// Compares two texts byte by byte, or for OP_CONTAINS looks for `right` within `left`: 1 or 0.
/// Nothing for any other operator.
std::optional<int32_t> compareTexts(int32_t code, std::string_view left, std::string_view right);
