#include "base/nearest_word.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace {

// Names are rarely longer, and a longer one takes time by the square of its length.
constexpr size_t LONGEST = 64;

char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

size_t changeOf(char from, char to) {
  if (from == to) return 0;
  return lower(from) == lower(to) ? 1 : 2;
}

// A word that is all but another case is near, whatever its length.
bool isSameButCase(std::string_view a, std::string_view b) {
  return std::ranges::equal(a, b, {}, lower, lower);
}

size_t limitFor(std::string_view word) {
  return word.size() <= 2 ? 1 : 2 * std::max<size_t>(1, word.size() / 3);
}

}  // namespace

size_t wordDistance(std::string_view from, std::string_view to, size_t limit) {
  const size_t longer = std::max(from.size(), to.size());
  const size_t shorter = std::min(from.size(), to.size());
  if (longer > LONGEST || 2 * (longer - shorter) > limit) return from == to ? 0 : limit + 1;
  std::vector<size_t> before;
  std::vector<size_t> last;
  std::vector<size_t> row(to.size() + 1);
  for (size_t j = 0; j <= to.size(); ++j) row[j] = 2 * j;
  for (size_t i = 1; i <= from.size(); ++i) {
    before = std::exchange(last, row);
    row[0] = 2 * i;
    for (size_t j = 1; j <= to.size(); ++j) {
      row[j] =
          std::min({last[j] + 2, row[j - 1] + 2, last[j - 1] + changeOf(from[i - 1], to[j - 1])});
      const bool isSwapped = i > 1 && j > 1 && from[i - 1] == to[j - 2] && from[i - 2] == to[j - 1];
      if (isSwapped) row[j] = std::min(row[j], before[j - 2] + 2);
    }
  }
  return std::min(row.back(), limit + 1);
}

NearestWord::NearestWord(std::string_view word) : word_(word), limit_(limitFor(word)) {}

void NearestWord::offer(std::string_view candidate) {
  if (isSameButCase(word_, candidate)) {
    const size_t changes = wordDistance(word_, candidate, word_.size());
    if (changes < caseChanges_) found_ = candidate;
    caseChanges_ = std::min(caseChanges_, changes);
    limit_ = 0;  // nothing else is nearer
    return;
  }
  const size_t distance = wordDistance(word_, candidate, limit_);
  if (distance > limit_ || distance == 0) return;
  if (found_ && distance == limit_) return;
  found_ = candidate;
  limit_ = distance;
}

void NearestWord::offer(std::span<const std::string_view> candidates) {
  for (const std::string_view candidate : candidates) offer(candidate);
}
