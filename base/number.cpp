#include "base/number.h"

#include <charconv>
#include <cstdlib>
#include <limits>

namespace {

constexpr size_t MAX_PLAIN_DIGITS = std::numeric_limits<int32_t>::digits10;  // they always fit

struct Conversion {
  int32_t number;
  size_t length;
};

// strtol wants a text that ends with a NUL byte, so it is given a copy. It also ends at a NUL byte
// within the text. Its long has 64 bits on every machine, which strtoll makes sure of.
Conversion convert(std::string_view text) {
  const std::string copy(text);
  char* end = nullptr;
  const long long number = std::strtoll(copy.c_str(), &end, 0);
  return {static_cast<int32_t>(number), static_cast<size_t>(end - copy.c_str())};
}

bool isDigit(char c) { return '0' <= c && c <= '9'; }

// The number of a text in plain decimal, which most numbers are: maybe a minus sign, then one to
// nine digits without leading zeros. nullopt for any other form.
std::optional<int32_t> plainNumber(std::string_view text) {
  const bool negative = text.starts_with('-');
  const std::string_view digits = text.substr(negative ? 1 : 0);
  if (digits.empty() || digits.size() > MAX_PLAIN_DIGITS) return std::nullopt;
  if (digits.front() == '0' && digits.size() > 1) return std::nullopt;
  int32_t number = 0;
  for (const char c : digits) {
    if (!isDigit(c)) return std::nullopt;
    number = number * 10 + (c - '0');
  }
  return negative ? -number : number;
}

// No number begins with a letter; most values that are no numbers do.
bool beginsWithLetter(std::string_view text) {
  const char lower = static_cast<char>(text.front() | 0x20);
  return 'a' <= lower && lower <= 'z';
}

}  // namespace

std::optional<int32_t> wholeNumber(std::string_view text) {
  if (text.empty()) return 0;
  if (const std::optional<int32_t> plain = plainNumber(text)) return plain;
  if (beginsWithLetter(text)) return std::nullopt;
  const Conversion conversion = convert(text);
  if (conversion.length != text.size()) return std::nullopt;
  return conversion.number;
}

int32_t leadingNumber(std::string_view text) { return convert(text).number; }

size_t numberLength(std::string_view text) { return convert(text).length; }

std::string numberText(int32_t number) {
  char digits[sizeof "-2147483648"];
  return {digits, std::to_chars(digits, digits + sizeof digits, number).ptr};
}
