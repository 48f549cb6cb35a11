#include "deflang/text/bare_number.h"

#include <optional>

#include "base/number.h"

int readBareNumber(Cursor& cursor, const StopSet& stops, int32_t& number) {
  const std::string_view word = cursor.word(stops);
  const std::optional<int32_t> whole = wholeNumber(word);
  if (word.empty() || !whole) {
    cursor.advance(numberLength(word));
    return PARSE_SYNTAX_ERROR;
  }
  number = *whole;
  cursor.advance(word.size());
  return PARSE_DONE;
}
