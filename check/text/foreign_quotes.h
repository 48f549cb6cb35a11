// Foreign quotes: texts in quotes that the language does not have.
#pragma once

#include <optional>
#include <string_view>

/// A text in foreign quotes.
struct ForeignQuotation {
  std::string_view whole;  ///< with its quotes; up to the end of the word where it is not closed
  std::string_view inner;  ///< between them
  bool isClosed = false;
};

/// The quotation that `line`, the rest of a line, begins with: in typographic quotes, apostrophes
/// or grave accents. No value where it begins with anything else. The views are parts of `line`.
std::optional<ForeignQuotation> foreignQuotation(std::string_view line);
