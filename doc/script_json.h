// JSON within a page: compact, and safe inside a script element whatever the texts are.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <string_view>

/// `bytes` with one character for each byte, so that JSON keeps every byte, also where they are no
/// UTF-8: the byte 0xE9 is U+00E9.
std::string charactersOf(std::string_view bytes);

/// `json` on one line, in ASCII and without "<": neither a text nor a name in it can end the script
/// element around it, or begin a comment there. It is JSON, and an expression of JavaScript. A byte
/// that belongs to no character of UTF-8 becomes U+FFFD.
std::string scriptJson(const nlohmann::ordered_json& json);
