#include "deflang/line_texts.h"

#include <cassert>

void LineTexts::add(uint32_t number, std::string_view text) {
  assert(number >= 1);
  if (lines_.size() < number) lines_.resize(number);
  lines_[number - 1] = memory_.keepText(text);
}

std::optional<std::string_view> LineTexts::find(uint32_t number) const {
  if (number < 1 || number > lines_.size()) return std::nullopt;
  const std::string_view line = lines_[number - 1];
  if (line.empty()) return std::nullopt;
  return line;
}
