// Number texts: what of a text is a number, by the C library's strtol in base 0.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// The number that the whole of `text` spells: decimal, "0x" hexadecimal or leading-"0" octal, with
/// leading white space and a sign allowed. Nothing when the conversion stops before the end. The
/// empty text is the number 0. The long that strtol gives is truncated to 32 bits.
std::optional<int32_t> wholeNumber(std::string_view text);

/// The number at the start of `text`, whatever follows it; 0 when there is none.
int32_t leadingNumber(std::string_view text);

/// How many characters of `text` strtol takes, white space and sign included; 0 when it finds no
/// number.
size_t numberLength(std::string_view text);

/// `number` in decimal.
std::string numberText(int32_t number);
