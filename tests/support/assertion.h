// For tests: what a failed assertion prints.
#pragma once

#include <string>
#include <string_view>

/// The pattern of the message with which `expression` fails in the function of that signature in
/// the source `source`.cpp. The texts themselves are taken literally.
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
