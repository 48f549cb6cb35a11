#include "deflang/text/translation_reader.h"

#include <utility>

#include "base/number.h"
#include "deflang/text/bare_number.h"

namespace {

// "1->2" needs no blanks; a negative number can only be written as a quoted text.
constexpr StopSet NUMBER_STOPS("-}");

}  // namespace

int TranslationReader::read(Cursor& cursor) {
  int result = PARSE_DONE;
  while (result == PARSE_DONE && stage_ != END) result = readStage(cursor);
  return result;
}

int TranslationReader::readStage(Cursor& cursor) {
  switch (stage_) {
    case OPENING:
      return expect(cursor, "{", SOURCE);
    case SOURCE:
      return readSource(cursor);
    case SOURCE_TEXT:
      return readText(cursor, translation_.source, ARROW);
    case ARROW:
      return expect(cursor, "->", TARGET);
    case TARGET:
      return readValue(cursor, translation_.target, TARGET_TEXT, CLOSING);
    case TARGET_TEXT:
      return readText(cursor, translation_.target, CLOSING);
    default:
      return expect(cursor, "}", END);
  }
}

int TranslationReader::expect(Cursor& cursor, std::string_view sign, stage_t next) {
  const int result = cursor.expect(sign);
  if (result == PARSE_DONE) stage_ = next;
  return result;
}

int TranslationReader::readSource(Cursor& cursor) {
  if (!cursor.skipWhiteSpace()) return PARSE_CONTINUES;
  translation_.at = cursor.position();
  return readValue(cursor, translation_.source, SOURCE_TEXT, ARROW);
}

int TranslationReader::readValue(Cursor& cursor, std::string_view& value, stage_t text,
                                 stage_t next) {
  if (!cursor.skipWhiteSpace()) return PARSE_CONTINUES;
  if (text_.open(cursor)) {
    stage_ = text;
    return PARSE_DONE;
  }
  int32_t number = 0;
  const int result = readBareNumber(cursor, NUMBER_STOPS, number);
  if (result != PARSE_DONE) return result;
  value = cursor.memory().keepText(numberText(number));
  stage_ = next;
  return PARSE_DONE;
}

int TranslationReader::readText(Cursor& cursor, std::string_view& value, stage_t next) {
  const int result = text_.read(cursor);
  if (result != PARSE_DONE) return result;
  value = text_.take();
  stage_ = next;
  return PARSE_DONE;
}

Translation TranslationReader::take() { return std::exchange(translation_, {}); }

void TranslationReader::reset() {
  stage_ = OPENING;
  text_.reset();
  translation_ = {};
}
