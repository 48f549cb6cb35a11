#include "check/text/foreign_quotes.h"

#include <algorithm>
#include <span>

#include "deflang/text/text_cursor.h"

namespace {

constexpr std::string_view SINGLE[] = {"'",      "`",      "\u2018", "\u2019",
                                       "\u201A", "\u201B", "\u2039", "\u203A"};
constexpr std::string_view DOUBLE[] = {"\u201C", "\u201D", "\u201E", "\u201F",
                                       "\u00AB", "\u00BB", "\uFF02"};

// How many bytes the quote of `quotes` that `text` begins with has; 0 without one.
size_t quoteLength(std::string_view text, std::span<const std::string_view> quotes) {
  for (const std::string_view quote : quotes) {
    if (text.starts_with(quote)) return quote.size();
  }
  return 0;
}

ForeignQuotation quotationIn(std::string_view line, size_t opening,
                             std::span<const std::string_view> quotes) {
  for (size_t at = opening; at < line.size() && line[at] != '"'; ++at) {
    const size_t closing = quoteLength(line.substr(at), quotes);
    if (closing == 0) continue;
    return {line.substr(0, at + closing), line.substr(opening, at - opening), true};
  }
  constexpr StopSet STOPS("(){},\"");
  const auto end = std::ranges::find_if(line, [&](char c) { return STOPS.contains(c); });
  const std::string_view word(line.begin(), end);
  return {word, word.substr(opening), false};
}

}  // namespace

std::optional<ForeignQuotation> foreignQuotation(std::string_view line) {
  for (const std::span<const std::string_view> quotes :
       {std::span<const std::string_view>(SINGLE), std::span<const std::string_view>(DOUBLE)}) {
    const size_t opening = quoteLength(line, quotes);
    if (opening > 0) return quotationIn(line, opening, quotes);
  }
  return {};
}
