#include "deflang/text/cursor.h"

#include <gtest/gtest.h>

#include <cctype>
#include <clocale>
#include <string>

#include "tests/support/reader.h"

namespace {

TEST(WhiteSpace, IsThatOfTheCLocale) {
  ASSERT_STREQ(setlocale(LC_CTYPE, "C"), "C");
  for (int c = 0; c < 256; ++c) {
    SCOPED_TRACE(c);
    EXPECT_EQ(isWhiteSpace(static_cast<char>(c)), isspace(c) != 0);
  }
}

TEST(StopSet, HoldsTheGivenCharactersAndWhiteSpace) {
  constexpr StopSet stops(",}");
  const std::string expected = ",} \t\n\v\f\r";
  for (int c = 0; c < 256; ++c) {
    SCOPED_TRACE(c);
    EXPECT_EQ(stops.contains(static_cast<char>(c)),
              expected.find(static_cast<char>(c)) != std::string::npos);
  }
}

TEST(Cursor, ReadsAWordWithoutGoingOn) {
  constexpr StopSet stops(",");
  struct Case {
    std::string_view line;
    std::string_view word;
  };
  const Case cases[] = {
      {"gain,hue", "gain"},
      {"gain", "gain"},  // the end of a line ends a word, with a
                         // newline or without
      {"gain\n", "gain"},
      {",gain", ""},
      {"", ""},
      {"h\xf6he \x85", "h\xf6he"},  // bytes from 0x80 up belong to words
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.line);
    const Cursor cursor(c.line, 1, testMemory());
    EXPECT_EQ(cursor.word(stops), c.word);
    EXPECT_EQ(cursor.column(), 0U);
  }
}

TEST(Cursor, SkipsWhiteSpaceToTheNextCharacterOrTheEnd) {
  Cursor cursor(" \t\v\f\rx \n", 7, testMemory());
  EXPECT_TRUE(cursor.skipWhiteSpace());
  EXPECT_EQ(cursor.column(), 5U);
  EXPECT_EQ(cursor.position().line, 7U);
  EXPECT_EQ(cursor.position().column, 5U);
  cursor.advance(1);
  EXPECT_FALSE(cursor.skipWhiteSpace());
  EXPECT_TRUE(cursor.atEnd());
  EXPECT_EQ(cursor.rest(), "");
}

TEST(Cursor, TakesOnlyTheSignThatComesNext) {
  Cursor cursor("->x", 1, testMemory());
  EXPECT_FALSE(cursor.take("x"));
  EXPECT_EQ(cursor.column(), 0U);
  EXPECT_TRUE(cursor.take("->"));
  EXPECT_EQ(cursor.rest(), "x");
  EXPECT_FALSE(cursor.take("xy"));  // the line ends within the sign
  EXPECT_EQ(cursor.column(), 2U);
}

TEST(Cursor, ExpectsASignAfterWhiteSpace) {
  struct Case {
    std::string_view line;
    int result;
    size_t column;
  };
  const Case cases[] = {
      {"  {x", PARSE_DONE, 3},      {"{", PARSE_DONE, 1},     {"  x{", PARSE_SYNTAX_ERROR, 2},
      {"  \n", PARSE_CONTINUES, 3}, {"", PARSE_CONTINUES, 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.line);
    Cursor cursor(c.line, 1, testMemory());
    EXPECT_EQ(cursor.expect("{"), c.result);
    EXPECT_EQ(cursor.column(), c.column);
  }
}

TEST(Cursor, MovesBackForACaret) {
  Cursor cursor("gain wo", 1, testMemory());
  cursor.advance(7);
  cursor.moveTo(5);
  EXPECT_EQ(cursor.rest(), "wo");
  EXPECT_EQ(cursor.line(), "gain wo");
}

}  // namespace
