#include "deflang/line_texts.h"

#include <cassert>

void LineTexts::add(uint32_t number, std::string_view text) {
  assert(number >= 1);
  if (lines_.size() < number) lines_.resize(number);
  lines_[number - 1] = {text_.size(), text.size()};
  text_ += text;
}

std::optional<std::string_view> LineTexts::find(uint32_t number) const {
  if (number < 1 || number > lines_.size()) return std::nullopt;
  const Span& line = lines_[number - 1];
  if (line.length == 0) return std::nullopt;
  return std::string_view(text_).substr(line.start, line.length);
}
