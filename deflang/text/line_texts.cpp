#include "deflang/text/line_texts.h"

#include <algorithm>

void LineTexts::add(uint32_t number, std::string_view text) {
  const std::string_view kept = arena_.keepText(text);
  const Line line = {number, static_cast<uint32_t>(kept.size()), kept.data()};
  if (lines_.empty() || lines_.back().number < number) {  // they mostly come in order
    lines_.push_back(line);
    return;
  }
  const auto at = std::ranges::lower_bound(lines_, number, {}, &Line::number);
  if (at->number == number) {
    *at = line;
  } else {
    lines_.insert(at, line);
  }
}

std::optional<std::string_view> LineTexts::find(uint32_t number) const {
  const auto at = std::ranges::lower_bound(lines_, number, {}, &Line::number);
  if (at == lines_.end() || at->number != number) return std::nullopt;
  return std::string_view(at->text, at->size);
}
