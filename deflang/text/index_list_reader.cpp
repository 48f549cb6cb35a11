#include "deflang/text/index_list_reader.h"

#include <utility>

namespace {

constexpr StopSet NAME_STOPS(",}");

}  // namespace

int IndexListReader::read(Cursor& cursor) {
  int result = PARSE_DONE;
  while (result == PARSE_DONE && stage_ != END) result = readStage(cursor);
  return result;
}

int IndexListReader::readStage(Cursor& cursor) {
  switch (stage_) {
    case OPENING:
      return readOpening(cursor);
    case NAME:
      return readName(cursor);
    default:
      return readSeparator(cursor);
  }
}

int IndexListReader::readOpening(Cursor& cursor) {
  const int result = cursor.expect("{");
  if (result == PARSE_DONE) stage_ = NAME;
  return result;
}

int IndexListReader::readName(Cursor& cursor) {
  if (!cursor.skipWhiteSpace()) return PARSE_CONTINUES;
  const std::string_view name = cursor.word(NAME_STOPS);
  if (name.empty()) return PARSE_SYNTAX_ERROR;
  names_.push_back({cursor.memory().keepText(name), cursor.position()});
  cursor.advance(name.size());
  stage_ = SEPARATOR;
  return PARSE_DONE;
}

int IndexListReader::readSeparator(Cursor& cursor) {
  if (!cursor.skipWhiteSpace()) return PARSE_CONTINUES;
  if (cursor.take(",")) {
    stage_ = NAME;
    return PARSE_DONE;
  }
  const int result = cursor.expect("}");
  if (result != PARSE_DONE) return result;
  statement_ = cursor.memory().keepList<IndexName>(names_);
  stage_ = END;
  return PARSE_DONE;
}

IndexStatement IndexListReader::take() { return std::exchange(statement_, {}); }

void IndexListReader::reset() {
  stage_ = OPENING;
  names_.clear();
  statement_ = {};
}
