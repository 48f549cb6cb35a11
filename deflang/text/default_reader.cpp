#include "deflang/text/default_reader.h"

#include <utility>

namespace {

constexpr StopSet VALUE_STOPS("}");

}  // namespace

int DefaultReader::read(Cursor& cursor) {
  int result = PARSE_DONE;
  while (result == PARSE_DONE && stage_ != END) result = readStage(cursor);
  return result;
}

int DefaultReader::readStage(Cursor& cursor) {
  switch (stage_) {
    case CONDITION:
      return readCondition(cursor);
    case START:
      return readStart(cursor);
    case TEXT:
      return readText(cursor);
    case VALUE:
      return readValue(cursor);
    default:
      return readClosing(cursor);
  }
}

int DefaultReader::readCondition(Cursor& cursor) {
  const int result = condition_.read(cursor);
  if (result != PARSE_DONE) return result;
  statement_.condition = condition_.take();
  stage_ = START;
  return PARSE_DONE;
}

int DefaultReader::readStart(Cursor& cursor) {
  if (!cursor.skipWhiteSpace()) return PARSE_CONTINUES;
  statement_.at = cursor.position();
  stage_ = text_.open(cursor) ? TEXT : VALUE;
  return PARSE_DONE;
}

int DefaultReader::readText(Cursor& cursor) {
  const int result = text_.read(cursor);
  if (result != PARSE_DONE) return result;
  statement_.text = text_.take();
  stage_ = CLOSING;
  return PARSE_DONE;
}

int DefaultReader::readValue(Cursor& cursor) {
  const int result = value_.read(cursor, VALUE_STOPS);
  if (result != PARSE_DONE) return result;
  statement_.value = value_.take();
  stage_ = CLOSING;
  return PARSE_DONE;
}

int DefaultReader::readClosing(Cursor& cursor) {
  const int result = cursor.expect("}");
  if (result == PARSE_DONE) stage_ = END;
  return result;
}

DefaultStatement DefaultReader::take() { return std::exchange(statement_, {}); }

void DefaultReader::reset() {
  stage_ = CONDITION;
  condition_.reset();
  text_.reset();
  value_.reset();
  statement_ = {};
}
