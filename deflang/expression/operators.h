// Operators: their texts, codes and precedence.
#pragma once

#include <cstdint>
#include <string_view>

enum operatorCode_t : int32_t {
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

/// An operator or parenthesis as the reader knows it.
struct OperatorText {
  std::string_view text;
  int32_t code;  ///< an operatorCode_t, TOKEN_OPEN or TOKEN_CLOSE
};

/// The operator or parenthesis at the start of `rest`, or null. Two-character operators win over
/// the one-character ones that they begin with.
const OperatorText* operatorAt(std::string_view rest);

/// The precedence level of an operator, 0 (binds tightest) to 10; -1 for what is no operator.
int precedence(int32_t code);
