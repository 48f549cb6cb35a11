#include "deflang/expression/operations.h"

#include <cstring>

#include "deflang/expression/operators.h"

namespace {

constexpr int32_t WORD_BITS = 32;

// Signed overflow has no defined result, unsigned wrapping has the one that is wanted.
int32_t wrap(uint32_t bits) { return static_cast<int32_t>(bits); }
uint32_t bitsOf(int32_t number) { return static_cast<uint32_t>(number); }

bool movesEverythingOut(int32_t count) { return count < 0 || count >= WORD_BITS; }

int32_t shiftLeft(int32_t number, int32_t count) {
  return movesEverythingOut(count) ? 0 : wrap(bitsOf(number) << count);
}

int32_t shiftRight(int32_t number, int32_t count) {
  return number >> (movesEverythingOut(count) ? WORD_BITS - 1 : count);
}

// The lowest number divided by -1 would trap: its negative does not fit into 32 bits.
std::optional<int32_t> divide(int32_t left, int32_t right) {
  if (right == 0) return std::nullopt;
  return right == -1 ? wrap(0U - bitsOf(left)) : left / right;
}

std::optional<int32_t> remainder(int32_t left, int32_t right) {
  if (right == 0) return std::nullopt;
  return right == -1 ? 0 : left % right;
}

// memmem looks in linear time; a plain search would take the product of both lengths at its worst.
bool contains(std::string_view text, std::string_view part) {
  return part.empty() || memmem(text.data(), text.size(), part.data(), part.size()) != nullptr;
}

}  // namespace

std::optional<int32_t> calculate(int32_t code, int32_t left, int32_t right) {
  switch (code) {
    case OP_LOGICAL_OR:
      return left != 0 || right != 0;
    case OP_LOGICAL_AND:
      return left != 0 && right != 0;
    case OP_BIT_OR:
      return left | right;
    case OP_BIT_XOR:
      return left ^ right;
    case OP_BIT_AND:
      return left & right;
    case OP_SHIFT_LEFT:
      return shiftLeft(left, right);
    case OP_SHIFT_RIGHT:
      return shiftRight(left, right);
    case OP_ADD:
      return wrap(bitsOf(left) + bitsOf(right));
    case OP_SUBTRACT:
      return wrap(bitsOf(left) - bitsOf(right));
    case OP_MULTIPLY:
      return wrap(bitsOf(left) * bitsOf(right));
    case OP_DIVIDE:
      return divide(left, right);
    case OP_REMAINDER:
      return remainder(left, right);
    case OP_EQUAL:
      return left == right;
    case OP_NOT_EQUAL:
      return left != right;
    case OP_LESS:
      return left < right;
    case OP_GREATER:
      return left > right;
    case OP_LESS_EQUAL:
      return left <= right;
    case OP_GREATER_EQUAL:
      return left >= right;
    default:
      return std::nullopt;
  }
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
