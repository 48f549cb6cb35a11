#include "check/printable.h"

#include <gtest/gtest.h>

namespace {

using namespace std::string_view_literals;

TEST(Printable, ShowsWhatATerminalCanShow) {
  const struct {
    std::string_view text;
    std::string_view shown;
  } cases[] = {
      {"gain rw { }", "gain rw { }"},
      {"", ""},
      {"h\u00F6he \u2192 \U0001F600", "h\u00F6he \u2192 \U0001F600"},
      {"\x1B[31mred", "\u241B[31mred"},
      {"a\0b\tc\rd\ne\x7F"sv, "a\u2400b\u2409c\u240Dd\u240Ae\u2421"},
      {"\xC2\x9B"
       "1m",
       "\uFFFD"
       "1m"},                                            // the one-byte escape sequence
      {"\u202Etxet", "\uFFFDtxet"},                      // from right to left
      {"\xFF\xC3", "\uFFFD\uFFFD"},                      // no character, half a character
      {"\xC3(", "\uFFFD("},                              // the second byte belongs to the next
      {"\xC0\xAF", "\uFFFD\uFFFD"},                      // a slash in two bytes
      {"\xED\xA0\x80", "\uFFFD\uFFFD\uFFFD"},            // half a pair of UTF-16
      {"\xF4\x90\x80\x80", "\uFFFD\uFFFD\uFFFD\uFFFD"},  // beyond the last character
      {"\xF4\x8F\xBF\xBD", "\xF4\x8F\xBF\xBD"},          // the last ones
      {"\xEF\xBB\xBFgain", "\uFFFDgain"},                // a byte order mark
      {"\xF0\x9F\x98", "\uFFFD\uFFFD\uFFFD"},            // one byte short
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.shown);
    EXPECT_EQ(printable(c.text), c.shown);
  }
}

TEST(Printable, CountsCharactersAndColumns) {
  EXPECT_EQ(characterCount(""), 0U);
  EXPECT_EQ(characterCount("a\u00F6\u2192\U0001F600"), 4U);
  EXPECT_EQ(characterCount("\xFF\xC3("), 3U);
  const struct {
    char32_t point;
    size_t columns;
  } cases[] = {{U'a', 1},      {U'\u00F6', 1}, {U'\u0300', 0},     {U'\u036F', 0}, {U'\u0370', 1},
               {U'\u4E00', 2}, {U'\uFF01', 2}, {U'\U0001F600', 2}, {U'\uFFFD', 1}};
  for (const auto& c : cases) {
    EXPECT_EQ(columnsOf(c.point), c.columns) << static_cast<uint32_t>(c.point);
  }
}

}  // namespace
