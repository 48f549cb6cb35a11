#include "deflang/text/range_reader.h"

#include <utility>

namespace {

constexpr StopSet LOWER_STOPS(",.}");
constexpr StopSet UPPER_STOPS(",}");

}  // namespace

int RangeReader::read(Cursor& cursor) {
  int result = PARSE_DONE;
  while (result == PARSE_DONE && stage_ != END) result = readStage(cursor);
  return result;
}

int RangeReader::readStage(Cursor& cursor) {
  switch (stage_) {
    case CONDITION:
      return readCondition(cursor);
    case FIRST_ITEM:
      return readFirstItem(cursor);
    case ITEM:
      return readItem(cursor);
    case TEXT:
      return readText(cursor);
    case LOWER:
      return readLower(cursor);
    case SPAN:
      return readSpan(cursor);
    case UPPER:
      return readUpper(cursor);
    default:
      return readSeparator(cursor);
  }
}

int RangeReader::readCondition(Cursor& cursor) {
  const int result = condition_.read(cursor);
  if (result != PARSE_DONE) return result;
  statement_.condition = condition_.take();
  stage_ = FIRST_ITEM;
  return PARSE_DONE;
}

int RangeReader::readFirstItem(Cursor& cursor) {
  if (!cursor.skipWhiteSpace()) return PARSE_CONTINUES;
  stage_ = cursor.take("}") ? END : ITEM;  // without items there is nothing to keep
  return PARSE_DONE;
}

int RangeReader::readItem(Cursor& cursor) {
  if (!cursor.skipWhiteSpace()) return PARSE_CONTINUES;
  items_.push_back({.at = cursor.position(), .text = {}, .lower = {}, .upper = {}});
  stage_ = text_.open(cursor) ? TEXT : LOWER;
  return PARSE_DONE;
}

int RangeReader::readText(Cursor& cursor) {
  const int result = text_.read(cursor);
  if (result != PARSE_DONE) return result;
  items_.back().text = text_.take();
  stage_ = SEPARATOR;
  return PARSE_DONE;
}

int RangeReader::readLower(Cursor& cursor) {
  const int result = value_.read(cursor, LOWER_STOPS);
  if (result != PARSE_DONE) return result;
  items_.back().lower = value_.take();
  stage_ = SPAN;
  return PARSE_DONE;
}

int RangeReader::readSpan(Cursor& cursor) {
  if (!cursor.skipWhiteSpace()) return PARSE_CONTINUES;
  stage_ = cursor.take("..") ? UPPER : SEPARATOR;
  return PARSE_DONE;
}

int RangeReader::readUpper(Cursor& cursor) {
  const int result = value_.read(cursor, UPPER_STOPS);
  if (result != PARSE_DONE) return result;
  items_.back().upper = value_.take();
  stage_ = SEPARATOR;
  return PARSE_DONE;
}

int RangeReader::readSeparator(Cursor& cursor) {
  if (!cursor.skipWhiteSpace()) return PARSE_CONTINUES;
  if (cursor.take(",")) {
    stage_ = ITEM;
    return PARSE_DONE;
  }
  const int result = cursor.expect("}");
  if (result != PARSE_DONE) return result;
  statement_.items = cursor.memory().keepList<RangeItem>(items_);
  stage_ = END;
  return PARSE_DONE;
}

RangeStatement RangeReader::take() { return std::exchange(statement_, {}); }

void RangeReader::reset() {
  stage_ = CONDITION;
  condition_.reset();
  text_.reset();
  value_.reset();
  items_.clear();
  statement_ = {};
}
