#include "deflang/text/quoted_text.h"

#include <algorithm>
#include <utility>

#include "base/value_limit.h"

bool QuotedText::open(Cursor& cursor) {
  if (!cursor.rest().starts_with(opening_)) return false;
  cursor.advance(1);
  open_ = true;
  return true;
}

int QuotedText::read(Cursor& cursor) {
  std::string_view rest = cursor.rest();
  const size_t end = rest.find(closing_);
  if (earlier_.size() + std::min(end, rest.size()) > MAX_VALUE_BYTES) return PARSE_SYNTAX_ERROR;
  open_ = end == std::string_view::npos;
  if (open_) {
    cursor.advance(rest.size());
    if (rest.ends_with('\n')) rest.remove_suffix(1);
    earlier_ += rest;
    return PARSE_CONTINUES;
  }
  std::string_view text = rest.substr(0, end);
  if (!earlier_.empty()) text = earlier_ += text;
  text_ = cursor.memory().keepText(text);
  earlier_.clear();
  cursor.advance(end + 1);
  return PARSE_DONE;
}

std::string_view QuotedText::take() { return std::exchange(text_, {}); }

void QuotedText::reset() {
  open_ = false;
  earlier_.clear();
  text_ = {};
}
