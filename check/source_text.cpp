#include "check/source_text.h"

#include <utility>

SourceText::SourceText(std::string name, std::string text)
    : name_(std::move(name)), text_(std::move(text)) {
  constexpr std::string_view BYTE_ORDER_MARK = "\xEF\xBB\xBF";
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
