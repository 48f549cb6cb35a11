#include "check/text/source_text.h"

#include <algorithm>
#include <utility>

#include "deflang/text/text_pieces.h"

SourceText::SourceText(std::string name, std::string text)
    : name_(std::move(name)), text_(std::move(text)) {
  if (text_.starts_with(BYTE_ORDER_MARK)) text_.erase(0, BYTE_ORDER_MARK.size());
  std::string_view rest = text_;
  while (!rest.empty()) {
    const size_t newline = rest.find('\n');
    lines_.push_back(rest.substr(0, newline));
    rest.remove_prefix(newline == std::string_view::npos ? rest.size() : newline + 1);
  }
}

std::string_view SourceText::line(uint32_t number) const {
  return number == 0 || number > lines_.size() ? std::string_view() : lines_[number - 1];
}

size_t SourceText::offsetOf(Position at) const {
  if (at.line == 0 || at.line > lines_.size()) return text_.size();
  const std::string_view line = lines_[at.line - 1];
  const auto start = static_cast<size_t>(line.data() - text_.data());
  return start + std::min<size_t>(at.column, line.size());
}

Position SourceText::positionOf(size_t offset) const {
  if (lines_.empty()) return {1, 0};
  const char* const at = text_.data() + offset;
  const auto behind = std::ranges::upper_bound(lines_, at, {}, &std::string_view::data);
  const auto line = static_cast<size_t>(behind - lines_.begin());
  return {static_cast<uint32_t>(line), static_cast<uint32_t>(at - lines_[line - 1].data())};
}
