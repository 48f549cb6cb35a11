#include "deflang/value_reader.h"

#include <utility>

#include "deflang/bare_number.h"

int ValueReader::read(Cursor& cursor, const StopSet& stops) {
  if (expression_.isOpen()) return expression_.read(cursor);
  if (!cursor.skipWhiteSpace()) return PARSE_CONTINUES;
  if (cursor.at("(")) return expression_.read(cursor);
  const Position at = cursor.position();
  int32_t number = 0;
  const int result = readBareNumber(cursor, stops, number);
  if (result == PARSE_DONE) number_.tokens.push_back({at, TOKEN_NUMBER, number, {}});
  return result;
}

Expression ValueReader::take() {
  return number_.empty() ? expression_.take() : std::exchange(number_, {});
}

void ValueReader::reset() {
  number_.tokens.clear();
  expression_.reset();
}
