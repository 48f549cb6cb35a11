// Number texts: what of a text is a number, by the C library's strtol in base 0.
//
//   text        wholeNumber   leadingNumber   numberLength
//   "-7"        -7            -7              2
//   "0x0A"      10            10              4
//   "010"       8             8               3               octal
//   " 5"        5             5               2
//   "5 "        nullopt       5               1
//   "12ab"      nullopt       12              2
//   "auto"      nullopt       0               0
//   ""          0             0               0
//
// All take time linear in the text. All but numberText() may raise std::bad_alloc: strtol wants a
// copy that ends with a NUL byte. A NUL byte within the text ends the number there.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// The number that the whole of `text` spells: decimal, "0x" hexadecimal or leading-"0" octal, with
/// leading white space and a sign allowed. Returns nullopt when the conversion stops before the
/// end. The empty text is the number 0. The long of 64 bits that strtol gives is truncated to
/// 32: "4294967295" is -1. The usual decimal forms of up to nine digits are converted without a
/// copy.
std::optional<int32_t> wholeNumber(std::string_view text);

/// The number at the start of `text`, whatever follows it; 0 when there is none. Truncated to 32
/// bits as in wholeNumber().
int32_t leadingNumber(std::string_view text);

/// How many bytes of `text` strtol takes, white space and sign included; 0 when it finds no number.
size_t numberLength(std::string_view text);

/// `number` in decimal: from 1 to 11 bytes, with "-" before a negative one.
std::string numberText(int32_t number);
