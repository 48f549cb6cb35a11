#include "ctl/completion/narrowed.h"

#include <glib.h>

#include <algorithm>

namespace {

// The length of the word up to its bracket number `count`, which is included; all of the word where
// it has fewer.
size_t upToBracket(const std::string& word, size_t count) {
  size_t end = 0;
  for (size_t i = 0; i < count; ++i) {
    const size_t bracket = word.find('[', end);
    if (bracket == std::string::npos) return word.size();
    end = bracket + 1;
  }
  return end;
}

template <typename LengthOf>
std::vector<std::string> beginnings(const std::vector<std::string>& words,
                                    const LengthOf& lengthOf) {
  std::vector<std::string> all;
  for (const std::string& word : words) {
    std::string beginning = word.substr(0, lengthOf(word));
    // Instances of a parameter are beside each other.
    if (all.empty() || all.back() != beginning) all.push_back(std::move(beginning));
  }
  std::ranges::sort(all);
  all.erase(std::unique(all.begin(), all.end()), all.end());
  return all;
}

bool isOffered(const std::vector<std::string>& words) {
  return words.size() > 1 && words.size() <= MOST_CANDIDATES;
}

size_t commonLength(const std::vector<std::string>& words) {
  size_t length = words.front().size();
  for (const std::string& word : words) {
    const auto [end, other] = std::mismatch(
        word.begin(), word.begin() + static_cast<ptrdiff_t>(std::min(length, word.size())),
        words.front().begin());
    length = static_cast<size_t>(end - word.begin());
  }
  // Not into a character of several bytes.
  while (length > 0 && (words.front()[length] & 0xC0) == 0x80) --length;
  return length;
}

// One character more.
size_t withNext(const std::string& word, size_t length) {
  if (length >= word.size()) return word.size();
  return length + static_cast<size_t>(g_utf8_skip[static_cast<guchar>(word[length])]);
}

}  // namespace

Candidates narrowed(std::vector<std::string> words) {
  if (words.size() <= MOST_CANDIDATES) return {.words = std::move(words)};
  size_t brackets = 0;
  for (const std::string& word : words) {
    brackets = std::max(brackets, static_cast<size_t>(std::ranges::count(word, '[')));
  }
  for (size_t count = brackets; count > 0; --count) {
    std::vector<std::string> all =
        beginnings(words, [&](const std::string& word) { return upToBracket(word, count); });
    if (isOffered(all)) return {.words = std::move(all), .isWhole = false};
  }
  const size_t common = commonLength(words);
  std::vector<std::string> all =
      beginnings(words, [&](const std::string& word) { return withNext(word, common); });
  all.resize(std::min(all.size(), MOST_CANDIDATES));
  return {.words = std::move(all), .isWhole = false};
}
