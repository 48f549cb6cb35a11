// Printable text: bytes of a definition text as a terminal can show them.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// One character at the start of a text.
struct Character {
  size_t length;   ///< its bytes, at least 1
  char32_t point;  ///< U+FFFD for a byte that belongs to no character of UTF-8
};

/// The first character of `text`, which is not empty.
Character firstCharacter(std::string_view text);

/// How many characters `text` has; a byte that belongs to none counts as one.
size_t characterCount(std::string_view text);

/// How many columns of a terminal a character takes: 0, 1 or 2.
size_t columnsOf(char32_t point);

/// What is shown of a character: itself; a picture of a control character (U+241B for escape),
/// which takes one column; U+FFFD for what would steer the terminal or change the order of the
/// text.
char32_t shownAs(char32_t point);

/// Adds a character to `text` as UTF-8.
void appendCharacter(char32_t point, std::string& text);

/// `text` with every character as it is shown: valid UTF-8 without control characters.
std::string printable(std::string_view text);
