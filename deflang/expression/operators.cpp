#include "deflang/expression/operators.h"

#include <array>
#include <cstring>

#include "deflang/expression/token.h"

namespace {

using Number = std::optional<int32_t>;

constexpr int32_t WORD_BITS = 32;

// Signed overflow has no defined result, unsigned wrapping has the one that is wanted.
constexpr int32_t wrap(uint32_t bits) { return static_cast<int32_t>(bits); }
constexpr uint32_t bitsOf(int32_t number) { return static_cast<uint32_t>(number); }

constexpr bool movesEverythingOut(int32_t count) { return count < 0 || count >= WORD_BITS; }

Number shiftLeft(int32_t number, int32_t count) {
  return movesEverythingOut(count) ? 0 : wrap(bitsOf(number) << count);
}

Number shiftRight(int32_t number, int32_t count) {
  return number >> (movesEverythingOut(count) ? WORD_BITS - 1 : count);
}

// The lowest number divided by -1 would trap: its negative does not fit into 32 bits.
Number divide(int32_t left, int32_t right) {
  if (right == 0) return std::nullopt;
  return right == -1 ? wrap(0U - bitsOf(left)) : left / right;
}

Number remainder(int32_t left, int32_t right) {
  if (right == 0) return std::nullopt;
  return right == -1 ? 0 : left % right;
}

Number none(int32_t /*left*/, int32_t /*right*/) { return std::nullopt; }

struct Operator {
  std::string_view text;
  int level;
  Number (*calculate)(int32_t left, int32_t right);
};

// The row of an operator is at the place that its code says.
constexpr std::array<Operator, OPERATOR_COUNT> OPERATORS = {{
    {"||", 10, [](int32_t a, int32_t b) -> Number { return a != 0 || b != 0; }},
    {"&&", 9, [](int32_t a, int32_t b) -> Number { return a != 0 && b != 0; }},
    {"|", 8, [](int32_t a, int32_t b) -> Number { return a | b; }},
    {"^", 7, [](int32_t a, int32_t b) -> Number { return a ^ b; }},
    {"&", 6, [](int32_t a, int32_t b) -> Number { return a & b; }},
    {"==", 5, [](int32_t a, int32_t b) -> Number { return a == b; }},
    {"!=", 5, [](int32_t a, int32_t b) -> Number { return a != b; }},
    {"<", 4, [](int32_t a, int32_t b) -> Number { return a < b; }},
    {">", 4, [](int32_t a, int32_t b) -> Number { return a > b; }},
    {"<=", 4, [](int32_t a, int32_t b) -> Number { return a <= b; }},
    {">=", 4, [](int32_t a, int32_t b) -> Number { return a >= b; }},
    {"<<", 3, shiftLeft},
    {">>", 3, shiftRight},
    {"+", 2, [](int32_t a, int32_t b) -> Number { return wrap(bitsOf(a) + bitsOf(b)); }},
    {"-", 2, [](int32_t a, int32_t b) -> Number { return wrap(bitsOf(a) - bitsOf(b)); }},
    {"*", 1, [](int32_t a, int32_t b) -> Number { return wrap(bitsOf(a) * bitsOf(b)); }},
    {"/", 1, divide},
    {"%", 1, remainder},
    {"$", 0, none},
}};

const Operator& operatorOf(int32_t code) { return OPERATORS[static_cast<size_t>(code)]; }

// memmem looks in linear time; a plain search would take the product of both lengths at its worst.
bool contains(std::string_view text, std::string_view part) {
  return part.empty() || memmem(text.data(), text.size(), part.data(), part.size()) != nullptr;
}

}  // namespace

std::optional<OperatorText> operatorAt(std::string_view rest) {
  if (rest.starts_with('(')) return OperatorText{rest.substr(0, 1), TOKEN_OPEN};
  if (rest.starts_with(')')) return OperatorText{rest.substr(0, 1), TOKEN_CLOSE};
  std::optional<OperatorText> found;
  for (int32_t code = 0; code < OPERATOR_COUNT && !rest.empty(); ++code) {
    const std::string_view text = operatorOf(code).text;
    if (text.front() != rest.front() || !rest.starts_with(text)) continue;
    if (!found || text.size() > found->text.size()) found = {text, code};
  }
  return found;
}

int precedence(int32_t code) { return isOperator(code) ? operatorOf(code).level : -1; }

std::optional<int32_t> calculate(int32_t code, int32_t left, int32_t right) {
  return isOperator(code) ? operatorOf(code).calculate(left, right) : std::nullopt;
}

std::optional<int32_t> absorb(int32_t code, int32_t defined) {
  switch (code) {
    case OP_BIT_AND:
    case OP_LOGICAL_AND:
      if (defined == 0) return 0;
      break;
    case OP_BIT_OR:
      if (defined == -1) return -1;
      break;
    case OP_LOGICAL_OR:
      if (defined != 0) return defined;
      break;
    default:
      break;
  }
  return std::nullopt;
}

std::optional<int32_t> compareTexts(int32_t code, std::string_view left, std::string_view right) {
  if (code == OP_CONTAINS) return contains(left, right);
  if (!isComparison(code)) return std::nullopt;
  return calculate(code, left.compare(right), 0);
}
