#include "deflang/cursor.h"

std::string_view Cursor::word(const StopSet& stops) const {
  size_t end = column_;
  while (end < line_.size() && !stops.contains(line_[end])) ++end;
  return line_.substr(column_, end - column_);
}

bool Cursor::skipWhiteSpace() {
  while (!atEnd() && isWhiteSpace(line_[column_])) ++column_;
  return !atEnd();
}

bool Cursor::take(std::string_view sign) {
  if (!at(sign)) return false;
  advance(sign.size());
  return true;
}

int Cursor::expect(std::string_view sign) {
  if (!skipWhiteSpace()) return PARSE_CONTINUES;
  return take(sign) ? PARSE_DONE : PARSE_SYNTAX_ERROR;
}
