#include "check/text/foreign_bytes.h"

#include <algorithm>

namespace {

// A text that is meant to be one has few characters that nobody can type.
constexpr size_t FEW_CONTROLS = 8;
constexpr size_t CONTROL_SHARE = 25;  // one of so many bytes

bool isControl(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return byte == 0x7F || (byte < 0x20 && (byte < '\t' || byte > '\r'));
}

// Every other byte of most characters is a NUL.
bool isInSixteenBits(std::string_view bytes) {
  const bool isMarked = bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF");
  size_t nuls[2] = {};
  for (size_t i = 0; i < bytes.size(); ++i) nuls[i % 2] += bytes[i] == '\0' ? 1 : 0;
  const auto [fewer, more] = std::minmax(nuls[0], nuls[1]);
  return (isMarked && more > 0) || (more > FEW_CONTROLS && 3 * more > bytes.size() && fewer == 0);
}

}  // namespace

std::string kindOfForeignBytes(std::string_view bytes) {
  if (isInSixteenBits(bytes)) return "the text is in UTF-16: write it in UTF-8";
  const auto controls = static_cast<size_t>(std::ranges::count_if(bytes, isControl));
  if (controls <= FEW_CONTROLS || controls * CONTROL_SHARE < bytes.size()) return {};
  return "this file is no text: " + std::to_string(controls) + " of its " +
         std::to_string(bytes.size()) + " bytes are control characters";
}
