// JSON as text, for the reports only: the library stays out of all other headers.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

/// `json` in lines, with a newline at its end. A byte that belongs to no character of UTF-8 becomes
/// U+FFFD.
inline std::string jsonText(const nlohmann::ordered_json& json) {
  constexpr int INDENT = 2;
  return json.dump(INDENT, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n";
}
