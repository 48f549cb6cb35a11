#include "doc/script_json.h"

#include <nlohmann/json.hpp>

std::string charactersOf(std::string_view bytes) {
  std::string characters;
  characters.reserve(bytes.size());
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x80) {
      characters += c;
    } else {
      characters += static_cast<char>(0xC0U | byte >> 6U);
      characters += static_cast<char>(0x80U | (byte & 0x3FU));
    }
  }
  return characters;
}

std::string scriptJson(const nlohmann::ordered_json& json) {
  const std::string dumped =
      json.dump(-1, ' ', true, nlohmann::ordered_json::error_handler_t::replace);
  std::string text;
  text.reserve(dumped.size());
  // In JSON a "<" is always within a text.
  for (const char c : dumped) {
    if (c == '<') {
      text += "\\u003c";
    } else {
      text += c;
    }
  }
  return text;
}
