#include "deflang/text/statement_grammar.h"

#include <optional>
#include <span>
#include <vector>

#include "base/number.h"
#include "deflang/text/expression_grammar.h"

namespace {

constexpr StopSet INDEX_NAME_STOPS(",}");
constexpr StopSet LOWER_STOPS(",.}");
constexpr StopSet UPPER_STOPS(",}");
constexpr StopSet DEFAULT_STOPS("}");
// "1->2" needs no blanks; a negative number can only be written as a quoted text.
constexpr StopSet TRANSLATED_STOPS("-}");

// Reads a number without parentheses, up to the next stop. On failure the caret is at the first
// character that belongs to no number: in "12ab" at the "a", in "}" at the brace.
bool readBareNumber(TextCursor& cursor, const StopSet& stops, int32_t& number) {
  const std::string_view word = cursor.word(stops);
  const std::optional<int32_t> whole = wholeNumber(word);
  if (word.empty() || !whole) {
    cursor.advance(numberLength(word));
    return cursor.fail(PARSE_SYNTAX_ERROR);
  }
  number = *whole;
  cursor.advance(word.size());
  return true;
}

// Reads a bare number, which ends at one of `stops`, or an expression, which ends at its
// parenthesis.
bool readValue(TextCursor& cursor, const StopSet& stops, Expression& value) {
  if (!cursor.skipWhiteSpace()) return false;
  if (cursor.at("(")) return readExpression(cursor, value);
  Token token = {cursor.position(), TOKEN_NUMBER, 0, {}};
  if (!readBareNumber(cursor, stops, token.number)) return false;
  value.tokens = cursor.arena().keepList(std::span<const Token>(&token, 1));
  return true;
}

// Reads an optional condition, and the opening brace.
bool readCondition(TextCursor& cursor, Expression& condition) {
  if (!cursor.skipWhiteSpace()) return false;
  if (cursor.at("(") && !readExpression(cursor, condition)) return false;
  return cursor.expect("{");
}

bool readItem(TextCursor& cursor, RangeItem& item) {
  if (!cursor.skipWhiteSpace()) return false;
  item.at = cursor.position();
  if (cursor.take("\"")) return readQuoted(cursor, '"', item.text.emplace());
  if (!readValue(cursor, LOWER_STOPS, item.lower) || !cursor.skipWhiteSpace()) return false;
  return !cursor.take("..") || readValue(cursor, UPPER_STOPS, item.upper.emplace());
}

// Reads a quoted text, or a bare number, which becomes its text in decimal.
bool readTranslated(TextCursor& cursor, std::string_view& value) {
  if (!cursor.skipWhiteSpace()) return false;
  if (cursor.take("\"")) return readQuoted(cursor, '"', value);
  int32_t number = 0;
  if (!readBareNumber(cursor, TRANSLATED_STOPS, number)) return false;
  value = cursor.arena().keepText(numberText(number));
  return true;
}

// Reads elements with commas between them, and the closing brace.
template <typename T, typename Read>
bool readList(TextCursor& cursor, std::span<const T>& list, Read readElement) {
  std::vector<T> elements;
  do {
    if (!readElement(cursor, elements.emplace_back()) || !cursor.skipWhiteSpace()) return false;
  } while (cursor.take(","));
  if (!cursor.expect("}")) return false;
  list = cursor.arena().keepList<T>(elements);
  return true;
}

bool readIndexName(TextCursor& cursor, IndexName& name) {
  if (!cursor.skipWhiteSpace()) return false;
  const std::string_view word = cursor.word(INDEX_NAME_STOPS);
  if (word.empty()) return cursor.fail(PARSE_SYNTAX_ERROR);
  name = {cursor.arena().keepText(word), cursor.position()};
  cursor.advance(word.size());
  return true;
}

}  // namespace

bool readIndexList(TextCursor& cursor, IndexStatement& statement) {
  return cursor.expect("{") && readList(cursor, statement, readIndexName);
}

bool readRange(TextCursor& cursor, RangeStatement& statement) {
  if (!readCondition(cursor, statement.condition) || !cursor.skipWhiteSpace()) return false;
  return cursor.take("}") || readList(cursor, statement.items, readItem);
}

bool readDefault(TextCursor& cursor, DefaultStatement& statement) {
  if (!readCondition(cursor, statement.condition) || !cursor.skipWhiteSpace()) return false;
  statement.at = cursor.position();
  const bool isRead = cursor.take("\"") ? readQuoted(cursor, '"', statement.text.emplace())
                                        : readValue(cursor, DEFAULT_STOPS, statement.value);
  return isRead && cursor.expect("}");
}

bool readTranslation(TextCursor& cursor, Translation& translation) {
  if (!cursor.expect("{") || !cursor.skipWhiteSpace()) return false;
  translation.at = cursor.position();
  return readTranslated(cursor, translation.source) && cursor.expect("->") &&
         readTranslated(cursor, translation.target) && cursor.expect("}");
}
