#include "deflang/text/value_reader.h"

#include <utility>

#include "deflang/text/bare_number.h"

int ValueReader::read(Cursor& cursor, const StopSet& stops) {
  if (expression_.isOpen()) return expression_.read(cursor);
  if (!cursor.skipWhiteSpace()) return PARSE_CONTINUES;
  if (cursor.at("(")) return expression_.read(cursor);
  const Position at = cursor.position();
  int32_t number = 0;
  const int result = readBareNumber(cursor, stops, number);
  if (result != PARSE_DONE) return result;
  const Token token = {at, TOKEN_NUMBER, number, {}};
  number_.tokens = cursor.memory().keepList(std::span(&token, 1));
  return PARSE_DONE;
}

Expression ValueReader::take() {
  return number_.empty() ? expression_.take() : std::exchange(number_, {});
}

void ValueReader::reset() {
  number_ = {};
  expression_.reset();
}
