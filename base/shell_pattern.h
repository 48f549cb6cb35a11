// Shell patterns: "gain*", "delay[1-4]", "?udio".
#pragma once

#include <bitset>
#include <optional>
#include <string_view>
#include <vector>

/// A pattern of whole names:
///
///   *       any characters, also none
///   ?       any one character
///   [a-z7]  one byte of a set; [!a-z7] or [^a-z7] one that is not in it; a "]" right behind the
///           opening belongs to the set
///   \c      the character c itself, also in a set
///
/// Matching takes time in proportion to the pattern and the name multiplied, whatever they are: a
/// client of a service may give any pattern.
class ShellPattern {
 public:
  /// Returns nullopt for a pattern with a set that has no end, or with a "\" at its end; `error`
  /// then says which.
  static std::optional<ShellPattern> parse(std::string_view text, std::string_view& error);

  /// Whether all of `name`, UTF-8 or any bytes, is as the pattern says.
  [[nodiscard]] bool matches(std::string_view name) const;

 private:
  enum Kind { ONE_OF, ANY_ONE, ANY };
  struct Element {
    Kind kind;
    std::bitset<256> set;  // of ONE_OF
  };

  // How many bytes of `name` an element other than ANY takes; 0 where it takes none.
  static size_t taken(const Element& element, std::string_view name);

  std::vector<Element> elements_;
};
