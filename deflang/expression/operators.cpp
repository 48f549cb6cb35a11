#include "deflang/expression/operators.h"

#include <algorithm>
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

// Each of these compares two numbers, or two texts byte by byte.
constexpr auto EQUAL = [](auto a, auto b) -> Number { return a == b; };
constexpr auto NOT_EQUAL = [](auto a, auto b) -> Number { return a != b; };
constexpr auto LESS = [](auto a, auto b) -> Number { return a < b; };
constexpr auto GREATER = [](auto a, auto b) -> Number { return a > b; };
constexpr auto LESS_EQUAL = [](auto a, auto b) -> Number { return a <= b; };
constexpr auto GREATER_EQUAL = [](auto a, auto b) -> Number { return a >= b; };

// memmem looks in linear time; a plain search would take the product of both lengths at its worst.
Number contains(std::string_view text, std::string_view part) {
  return part.empty() || memmem(text.data(), text.size(), part.data(), part.size()) != nullptr;
}

struct Operator {
  int32_t code;
  std::string_view text;
  int level;
  Number (*ofNumbers)(int32_t left, int32_t right);  // null: none for numbers
  bool (*absorbs)(int32_t defined) = nullptr;        // null: no operand decides alone
  Number (*ofTexts)(std::string_view left, std::string_view right) = nullptr;  // null: as numbers
};

constexpr bool isZero(int32_t number) { return number == 0; }
constexpr bool isNotZero(int32_t number) { return number != 0; }
constexpr bool isAllBits(int32_t number) { return number == -1; }

// A new operator is a row here. Its code is any number from 0 that is neither another row's nor a
// TokenKind.
constexpr Operator OPERATORS[] = {
    {OP_LOGICAL_OR, "||", 10, [](int32_t a, int32_t b) -> Number { return a != 0 || b != 0; },
     isNotZero},
    {OP_LOGICAL_AND, "&&", 9, [](int32_t a, int32_t b) -> Number { return a != 0 && b != 0; },
     isZero},
    {OP_BIT_OR, "|", 8, [](int32_t a, int32_t b) -> Number { return a | b; }, isAllBits},
    {OP_BIT_XOR, "^", 7, [](int32_t a, int32_t b) -> Number { return a ^ b; }},
    {OP_BIT_AND, "&", 6, [](int32_t a, int32_t b) -> Number { return a & b; }, isZero},
    {OP_EQUAL, "==", 5, EQUAL, nullptr, EQUAL},
    {OP_NOT_EQUAL, "!=", 5, NOT_EQUAL, nullptr, NOT_EQUAL},
    {OP_LESS, "<", 4, LESS, nullptr, LESS},
    {OP_GREATER, ">", 4, GREATER, nullptr, GREATER},
    {OP_LESS_EQUAL, "<=", 4, LESS_EQUAL, nullptr, LESS_EQUAL},
    {OP_GREATER_EQUAL, ">=", 4, GREATER_EQUAL, nullptr, GREATER_EQUAL},
    {OP_SHIFT_LEFT, "<<", 3, shiftLeft},
    {OP_SHIFT_RIGHT, ">>", 3, shiftRight},
    {OP_ADD, "+", 2, [](int32_t a, int32_t b) -> Number { return wrap(bitsOf(a) + bitsOf(b)); }},
    {OP_SUBTRACT, "-", 2,
     [](int32_t a, int32_t b) -> Number { return wrap(bitsOf(a) - bitsOf(b)); }},
    {OP_MULTIPLY, "*", 1,
     [](int32_t a, int32_t b) -> Number { return wrap(bitsOf(a) * bitsOf(b)); }},
    {OP_DIVIDE, "/", 1, divide},
    {OP_REMAINDER, "%", 1, remainder},
    {OP_CONTAINS, "$", 0, nullptr, nullptr, contains},
};

constexpr bool isTaken(int32_t code) {
  return code < 0 || code == TOKEN_NUMBER || code == TOKEN_STRING || code == TOKEN_VARIABLE;
}

constexpr bool codesAreDistinct() {
  for (const Operator& one : OPERATORS) {
    const auto same = [&](const Operator& other) { return other.code == one.code; };
    if (isTaken(one.code) || std::ranges::count_if(OPERATORS, same) != 1) return false;
  }
  return true;
}
static_assert(codesAreDistinct());

// The place of each code's row, or -1.
constexpr size_t CODES =
    static_cast<size_t>(std::ranges::max(OPERATORS, {}, &Operator::code).code) + 1;
constexpr std::array<int8_t, CODES> PLACES = [] {
  std::array<int8_t, CODES> places{};
  places.fill(-1);
  int8_t place = 0;
  for (const Operator& row : OPERATORS) places[static_cast<size_t>(row.code)] = place++;
  return places;
}();

// The row of `code`; null where it is no operator.
const Operator* operatorOf(int32_t code) {
  if (code < 0 || static_cast<size_t>(code) >= CODES) return nullptr;
  const int8_t place = PLACES[static_cast<size_t>(code)];
  return place < 0 ? nullptr : &OPERATORS[place];
}

}  // namespace

bool isOperator(int32_t kind) { return operatorOf(kind) != nullptr; }

bool comparesTexts(int32_t code) {
  const Operator* row = operatorOf(code);
  return row != nullptr && row->ofTexts != nullptr;
}

std::optional<OperatorText> operatorAt(std::string_view rest) {
  if (rest.starts_with('(')) return OperatorText{rest.substr(0, 1), TOKEN_OPEN};
  if (rest.starts_with(')')) return OperatorText{rest.substr(0, 1), TOKEN_CLOSE};
  std::optional<OperatorText> found;
  for (const Operator& row : OPERATORS) {
    if (rest.empty() || row.text.front() != rest.front() || !rest.starts_with(row.text)) continue;
    if (!found || row.text.size() > found->text.size()) found = {row.text, row.code};
  }
  return found;
}

std::string_view operatorText(int32_t code) {
  const Operator* row = operatorOf(code);
  return row != nullptr ? row->text : std::string_view();
}

int precedence(int32_t code) {
  const Operator* row = operatorOf(code);
  return row != nullptr ? row->level : -1;
}

std::optional<int32_t> calculate(int32_t code, int32_t left, int32_t right) {
  const Operator* row = operatorOf(code);
  return row != nullptr && row->ofNumbers != nullptr ? row->ofNumbers(left, right) : std::nullopt;
}

std::optional<int32_t> absorb(int32_t code, int32_t defined) {
  const Operator* row = operatorOf(code);
  if (row == nullptr || row->absorbs == nullptr || !row->absorbs(defined)) return std::nullopt;
  return defined;
}

std::optional<int32_t> compareTexts(int32_t code, std::string_view left, std::string_view right) {
  return comparesTexts(code) ? operatorOf(code)->ofTexts(left, right) : std::nullopt;
}
