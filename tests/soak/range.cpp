#include "tests/soak/range.h"

#include <algorithm>
#include <cstdlib>

std::optional<int> numberOf(const std::string& text) {
  char* end = nullptr;
  const long number = std::strtol(text.c_str(), &end, 0);
  if (end != text.c_str() + text.size()) return std::nullopt;
  return static_cast<int>(number);
}

// A number between two spans goes up.
int Range::nearest(int number) const {
  for (const auto& [low, high] : spans) {
    if (number <= high) return std::max(number, low);
  }
  return spans.back().second;
}

bool Range::takesNumber(std::string& value) const {
  const std::optional<int> number = numberOf(value);
  const int allowed = nearest(number.value_or(0));
  if (number == allowed) return true;
  value = std::to_string(allowed);
  return false;
}

bool Range::takesText(std::string& value) const {
  if (std::find(texts.begin(), texts.end(), value) != texts.end()) return true;
  value = texts.front();
  return false;
}

bool Range::takes(std::string& value) const {
  if (spans.empty() && texts.empty()) return true;
  if (spans.empty()) return takesText(value);
  if (texts.empty()) {
    const bool isEmpty = value.empty();
    return takesNumber(value) && !isEmpty;
  }
  return !value.empty() && numberOf(value) ? takesNumber(value) : takesText(value);
}
