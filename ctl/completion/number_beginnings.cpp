#include "ctl/completion/number_beginnings.h"

#include <algorithm>
#include <limits>

namespace {

// Both ends included; empty where the first is greater.
using Interval = std::pair<int64_t, int64_t>;

constexpr int64_t LOWEST = std::numeric_limits<int32_t>::min();
constexpr int64_t HIGHEST = std::numeric_limits<int32_t>::max();
constexpr size_t MOST_DIGITS = 10;

// The numbers that begin with these digits, of which the first is no 0: one interval for each
// length.
std::vector<Interval> intervalsOfDigits(int64_t digits, int64_t most) {
  std::vector<Interval> intervals;
  for (int64_t size = 1; digits * size <= most; size *= 10) {
    intervals.emplace_back(digits * size, digits * size + size - 1);
  }
  return intervals;
}

// The integers that begin with a text.
std::vector<Interval> intervalsOf(const std::string& text) {
  if (text.empty()) return {{LOWEST, HIGHEST}};
  if (text == "-") return {{LOWEST, -1}};
  if (text == "0") return {{0, 0}};
  const bool isNegative = text[0] == '-';
  const std::string digits = text.substr(isNegative ? 1 : 0);
  const bool isNumber = std::ranges::all_of(digits, [](char c) { return c >= '0' && c <= '9'; });
  if (!isNumber || digits[0] == '0' || digits.size() > MOST_DIGITS) return {};
  std::vector<Interval> intervals =
      intervalsOfDigits(std::stoll(digits), isNegative ? -LOWEST : HIGHEST);
  if (isNegative) {
    for (Interval& each : intervals) each = {-each.second, -each.first};
  }
  return intervals;
}

Interval common(const Interval& interval, const Span& span) {
  return {std::max<int64_t>(interval.first, span.first),
          std::min<int64_t>(interval.second, span.second)};
}

}  // namespace

uint64_t countNumbers(const std::vector<Span>& spans, const std::string& text) {
  uint64_t count = 0;
  for (const Interval& interval : intervalsOf(text)) {
    for (const Span& span : spans) {
      const auto [low, high] = common(interval, span);
      if (low <= high) count += static_cast<uint64_t>(high - low) + 1;
    }
  }
  return count;
}

std::vector<std::string> numbersFrom(const std::vector<Span>& spans, const std::string& text) {
  std::vector<int64_t> numbers;
  for (const Interval& interval : intervalsOf(text)) {
    for (const Span& span : spans) {
      const auto [low, high] = common(interval, span);
      for (int64_t number = low; number <= high; ++number) numbers.push_back(number);
    }
  }
  std::ranges::sort(numbers);
  std::vector<std::string> all;
  all.reserve(numbers.size());
  for (const int64_t number : numbers) all.push_back(std::to_string(number));
  return all;
}

std::vector<std::string> numberBeginnings(const std::vector<Span>& spans, const std::string& text) {
  std::vector<std::string> all;
  uint64_t longer = 0;
  for (const char next : {'-', '0', '1', '2', '3', '4', '5', '6', '7', '8', '9'}) {
    const uint64_t count = countNumbers(spans, text + next);
    if (count > 0) all.push_back(text + next);
    longer += count;
  }
  // One that goes on with no sign is the text itself.
  if (countNumbers(spans, text) > longer) all.insert(all.begin(), text);
  return all;
}
