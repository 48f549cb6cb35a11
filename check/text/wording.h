// Wording: how the findings quote and list what a text has.
#pragma once

#include <span>
#include <string>
#include <string_view>

/// `text` in double quotes.
std::string inQuotes(std::string_view text);

/// `text` in double quotes, cut where it is long.
std::string quoted(std::string_view text);

/// "a, b or c".
std::string listOf(std::span<const std::string_view> words);
