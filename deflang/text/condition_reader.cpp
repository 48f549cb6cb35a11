#include "deflang/text/condition_reader.h"

int ConditionReader::read(Cursor& cursor) {
  if (!expression_.isOpen() && !cursor.skipWhiteSpace()) return PARSE_CONTINUES;
  if (!seen_ && (expression_.isOpen() || cursor.at("("))) {
    const int result = expression_.read(cursor);
    if (result != PARSE_DONE) return result;
    seen_ = true;
  }
  return cursor.expect("{");
}

void ConditionReader::reset() {
  seen_ = false;
  expression_.reset();
}
