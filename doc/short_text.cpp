#include "doc/short_text.h"

#include <string_view>

#include "check/printable.h"

std::string shortened(const std::string& text, size_t most) {
  if (text.size() <= most || characterCount(text) <= most) return text;
  std::string_view rest = text;
  for (size_t i = 0; i + 1 < most; ++i) rest.remove_prefix(firstCharacter(rest).length);
  return text.substr(0, text.size() - rest.size()) + "…";
}
