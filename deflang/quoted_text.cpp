#include "deflang/quoted_text.h"

#include <utility>

bool QuotedText::open(Cursor& cursor) {
  if (!cursor.rest().starts_with(opening_)) return false;
  cursor.advance(1);
  open_ = true;
  return true;
}

int QuotedText::read(Cursor& cursor) {
  std::string_view rest = cursor.rest();
  const size_t end = rest.find(closing_);
  open_ = end == std::string_view::npos;
  if (open_) {
    cursor.advance(rest.size());
    if (rest.ends_with('\n')) rest.remove_suffix(1);
    text_ += rest;
    return PARSE_CONTINUES;
  }
  text_ += rest.substr(0, end);
  cursor.advance(end + 1);
  return PARSE_DONE;
}

std::string QuotedText::take() { return std::exchange(text_, {}); }

void QuotedText::reset() {
  open_ = false;
  text_.clear();
}
