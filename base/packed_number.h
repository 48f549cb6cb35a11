// Packed numbers: numbers in a row of bytes, small ones in few of them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

/// The most bytes that a number takes.
constexpr size_t MOST_PACKED_BYTES = 5;

/// Writes `number` to `out`: seven bits in each byte, the lowest first; the highest bit says that
/// there are more. So only the number 0 begins with the byte 0. Returns the end.
inline char* packNumber(uint32_t number, char* out) {
  for (; number >= 0x80; number >>= 7U) *out++ = static_cast<char>(number | 0x80U);
  *out++ = static_cast<char>(number);
  return out;
}

/// The number at `at` of what packNumber() wrote; goes past it.
inline uint32_t unpackNumber(std::string_view bytes, size_t& at) {
  uint32_t number = 0;
  unsigned shift = 0;
  unsigned char byte = 0;
  do {
    byte = static_cast<unsigned char>(bytes[at++]);
    number |= static_cast<uint32_t>(byte & 0x7F) << shift;
    shift += 7;
  } while (byte >= 0x80);
  return number;
}
