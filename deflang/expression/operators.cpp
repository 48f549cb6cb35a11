#include "deflang/expression/operators.h"

#include "deflang/expression/token.h"

namespace {

// In the order in which they are tried.
constexpr OperatorText OPERATOR_TEXTS[] = {
    {"||", OP_LOGICAL_OR}, {"&&", OP_LOGICAL_AND},   {"==", OP_EQUAL},      {"!=", OP_NOT_EQUAL},
    {"<=", OP_LESS_EQUAL}, {">=", OP_GREATER_EQUAL}, {"<<", OP_SHIFT_LEFT}, {">>", OP_SHIFT_RIGHT},
    {"(", TOKEN_OPEN},     {")", TOKEN_CLOSE},       {"|", OP_BIT_OR},      {"^", OP_BIT_XOR},
    {"&", OP_BIT_AND},     {"<", OP_LESS},           {">", OP_GREATER},     {"+", OP_ADD},
    {"-", OP_SUBTRACT},    {"*", OP_MULTIPLY},       {"/", OP_DIVIDE},      {"%", OP_REMAINDER},
    {"$", OP_CONTAINS},
};

}  // namespace

const OperatorText* operatorAt(std::string_view rest) {
  for (const OperatorText& candidate : OPERATOR_TEXTS) {
    const bool begins = !rest.empty() && rest.front() == candidate.text.front();
    if (begins && rest.starts_with(candidate.text)) return &candidate;
  }
  return nullptr;
}

int precedence(int32_t code) {
  switch (code) {
    case OP_CONTAINS:
      return 0;
    case OP_REMAINDER:
    case OP_DIVIDE:
    case OP_MULTIPLY:
      return 1;
    case OP_SUBTRACT:
    case OP_ADD:
      return 2;
    case OP_SHIFT_RIGHT:
    case OP_SHIFT_LEFT:
      return 3;
    case OP_GREATER_EQUAL:
    case OP_LESS_EQUAL:
    case OP_GREATER:
    case OP_LESS:
      return 4;
    case OP_NOT_EQUAL:
    case OP_EQUAL:
      return 5;
    case OP_BIT_AND:
      return 6;
    case OP_BIT_XOR:
      return 7;
    case OP_BIT_OR:
      return 8;
    case OP_LOGICAL_AND:
      return 9;
    case OP_LOGICAL_OR:
      return 10;
    default:
      return -1;
  }
}
