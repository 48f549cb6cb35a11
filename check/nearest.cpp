#include "check/nearest.h"

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

namespace {

// Words are short; of longer ones no slip is looked for.
constexpr size_t MAX_LENGTH = 200;

// The least number of slips between two words: row by row of the table of all their beginnings.
size_t slipsBetween(std::string_view a, std::string_view b) {
  std::vector<size_t> beforeLast(b.size() + 1);
  std::vector<size_t> last(b.size() + 1);
  std::vector<size_t> row(b.size() + 1);
  for (size_t j = 0; j <= b.size(); ++j) last[j] = j;
  for (size_t i = 1; i <= a.size(); ++i) {
    row[0] = i;
    for (size_t j = 1; j <= b.size(); ++j) {
      const size_t wrong = a[i - 1] == b[j - 1] ? 0 : 1;
      row[j] = std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + wrong});
      const bool exchanged = i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1];
      if (exchanged) row[j] = std::min(row[j], beforeLast[j - 2] + 1);
    }
    std::swap(beforeLast, last);
    std::swap(last, row);
  }
  return last[b.size()];
}

}  // namespace

std::optional<std::string_view> nearestName(std::string_view word,
                                            std::span<const std::string_view> names) {
  if (word.size() < 2 || word.size() > MAX_LENGTH) return std::nullopt;
  const size_t limit = std::max<size_t>(1, word.size() / 3);
  std::optional<std::string_view> nearest;
  size_t fewest = limit + 1;
  for (const std::string_view name : names) {
    if (name == word || name.size() > word.size() + limit) continue;
    const size_t slips = slipsBetween(word, name);
    if (slips >= fewest) continue;
    nearest = name;
    fewest = slips;
  }
  return nearest;
}
