// Assertions, for death tests: what a failed one prints.
#pragma once

#include <string>
#include <string_view>

/// The regular expression of the message of a failed assert(`expression`) in the function
/// `signature`, as the compiler spells it, of the source `source`.cpp. It accepts any line number;
/// in the three texts every character means itself.
inline std::string assertionPattern(std::string_view source, std::string_view signature,
                                    std::string_view expression) {
  const auto literal = [](std::string_view text) {
    std::string pattern;
    for (const char c : text) {
      const bool special = std::string_view(".[]{}()\\*+?^$|").find(c) != std::string_view::npos;
      if (special) pattern += '\\';
      pattern += c;
    }
    return pattern;
  };
  return "/" + literal(source) + "\\.cpp:[0-9]+: " + literal(signature) + ": Assertion `" +
         literal(expression) + "' failed\\.";
}
