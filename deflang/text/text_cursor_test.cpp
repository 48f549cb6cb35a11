#include "deflang/text/text_cursor.h"

#include <gtest/gtest.h>

#include <cctype>
#include <clocale>
#include <iterator>
#include <optional>
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

// A cursor at the start of `text`.
TextCursor cursorOf(std::string_view text) {
  TextCursor cursor(linesIn(text), testArena());
  cursor.pullLine();
  return cursor;
}

// White space between words is one blank, comments are left out.
TEST(TextCursor, GivesAnExcerptOfWhatIsRead) {
  constexpr StopSet stops("{}");
  const struct {
    std::string_view text;
    std::string_view excerpt;
  } cases[] = {
      {"gain{}", "gain{}"},
      {"gain { }", "gain { }"},
      {"gain\t{\r\n\n  } }", "gain { }"},
      {"gain  { }", "gain { }"},
      {"gain{\n# comment }\n}", "gain{ }"},
      // Blank lines, and what is on them.
      {"gain\n\n\n{}", "gain {}"},
      {"gain {\n\t\n   }", "gain { }"},
      {"gain {\n  \n   }", "gain { }"},
      {"gain{\n \t \n}", "gain{ }"},
      {"gain\r\n\r\n{\r\n\r\n\r\n }", "gain { }"},
      {"gain {\n  \n# comment }\n\t\t\n}", "gain { }"},
      {"gain {\r\n \r\n # comment }\r\n\f\r\n}", "gain { }"},
      {"gain\n  \n{} \n\t\n", "gain {}"},
  };
  for (const auto& [text, excerpt] : cases) {
    SCOPED_TRACE(text);
    TextCursor cursor = cursorOf(text);
    cursor.beginExcerpt();
    cursor.advance(cursor.word(stops).size());
    EXPECT_TRUE(cursor.expect("{"));
    EXPECT_TRUE(cursor.expect("}"));
    EXPECT_EQ(cursor.endExcerpt(), excerpt);
    cursor.beginExcerpt();
    EXPECT_EQ(cursor.endExcerpt(), "");
  }
}

TEST(TextCursor, ReadsAWordWithoutGoingOn) {
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
    const TextCursor cursor = cursorOf(c.line);
    EXPECT_EQ(cursor.word(stops), c.word);
    EXPECT_EQ(cursor.position().column, 0U);
  }
}

TEST(TextCursor, SkipsWhiteSpaceToTheNextCharacterOnWhicheverLine) {
  struct Case {
    std::string_view text;
    std::string_view rest;
    std::string_view place;
  };
  const Case cases[] = {
      {" \t\v\f\rx \n", "x \n", "1:5"}, {"x", "x", "1:0"},
      {"\n\n  x", "x", "3:2"},          {"# a\n x", "x", "2:1"},
      {" #\n#\n\n#x\ny", "y", "5:0"},   {" x # y", "x # y", "1:1"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    TextCursor cursor(linesIn(c.text), testArena());
    EXPECT_TRUE(cursor.skipWhiteSpace());
    EXPECT_EQ(cursor.rest(), c.rest);
    EXPECT_EQ(textOf(cursor.position()), c.place);
  }
}

TEST(TextCursor, ComesToTheEndOfTheTextWithoutAFault) {
  for (const std::string_view text : {"", " ", "\n", "# x", " \n# x\n\t\n"}) {
    SCOPED_TRACE(text);
    TextCursor cursor(linesIn(text), testArena());
    EXPECT_FALSE(cursor.skipWhiteSpace());
    EXPECT_FALSE(cursor.skipWhiteSpace());
    EXPECT_FALSE(cursor.expect("x"));
    EXPECT_EQ(cursor.result(), PARSE_DONE);
    EXPECT_EQ(cursor.rest(), "");
  }
}

TEST(TextCursor, ReadsNothingOfWhatTheLastLineWouldHaveBeen) {
  const auto failsInTheMiddle = [](std::string_view& line) {
    line = "half";
    return false;
  };
  TextCursor cursor(failsInTheMiddle, testArena());
  EXPECT_FALSE(cursor.skipWhiteSpace());
  EXPECT_EQ(cursor.rest(), "");
}

TEST(TextCursor, CountsFromWhereALineIsSaidToStart) {
  struct Line {
    std::string_view text;
    std::optional<Position> start;
    Position first;  // of the first character that is no white space
  };
  const Line lines[] = {
      {"one\n", {}, {1, 0}},
      {"  long", {}, {2, 2}},
      {" rest\n", Position{2, 6}, {2, 7}},
      {"next\n", {}, {3, 0}},
      {" rest\n", Position{2, 6}, {2, 7}},  // once more
      {"next\n", {}, {3, 0}},
  };
  size_t given = 0;
  TextCursor* self = nullptr;
  const auto nextLine = [&](std::string_view& text) {
    if (given == std::size(lines)) return false;
    if (lines[given].start) self->startLineAt(*lines[given].start);
    text = lines[given++].text;
    return true;
  };
  TextCursor cursor(nextLine, testArena());
  self = &cursor;
  for (const Line& line : lines) {
    ASSERT_TRUE(cursor.pullLine());
    ASSERT_TRUE(cursor.skipWhiteSpace());
    EXPECT_EQ(cursor.position().line, line.first.line);
    EXPECT_EQ(cursor.position().column, line.first.column);
  }
  EXPECT_FALSE(cursor.pullLine());
  EXPECT_EQ(cursor.position().line, 3U);
  EXPECT_EQ(cursor.position().column, 0U);
}

TEST(TextCursor, RefusesALineWithANul) {
  using namespace std::string_literals;
  const std::string text = "# \0\n a\0\n"s;
  TextCursor cursor(linesIn(text), testArena());
  EXPECT_FALSE(cursor.skipWhiteSpace());
  EXPECT_EQ(cursor.result(), PARSE_SYNTAX_ERROR);
  EXPECT_EQ(textOf(cursor.position()), "2:2");
  EXPECT_FALSE(cursor.skipWhiteSpace());  // nothing is read any more
}

TEST(TextCursor, TakesOnlyTheSignThatComesNext) {
  TextCursor cursor = cursorOf("->x");
  EXPECT_FALSE(cursor.take("x"));
  EXPECT_EQ(cursor.rest(), "->x");
  EXPECT_TRUE(cursor.take("->"));
  EXPECT_EQ(cursor.rest(), "x");
  EXPECT_FALSE(cursor.take("xy"));  // the line ends within the sign
  EXPECT_EQ(cursor.rest(), "x");
}

TEST(TextCursor, ExpectsASignAfterWhiteSpace) {
  struct Case {
    std::string_view text;
    bool isThere;
    int result;
    std::string_view place;
  };
  const Case cases[] = {
      {"  {x", true, PARSE_DONE, "1:3"},
      {"{", true, PARSE_DONE, "1:1"},
      {"\n# x\n {", true, PARSE_DONE, "3:2"},
      {"  x{", false, PARSE_SYNTAX_ERROR, "1:2"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    TextCursor cursor(linesIn(c.text), testArena());
    EXPECT_EQ(cursor.expect("{"), c.isThere);
    EXPECT_EQ(cursor.result(), c.result);
    EXPECT_EQ(textOf(cursor.position()), c.place);
  }
}

TEST(TextCursor, FailsAtAPlaceOfItsLineOrAtTheFirstWordOfIt) {
  struct Case {
    Position at;
    std::string_view place;
  };
  const Case cases[] = {{{2, 5}, "2:5"}, {{1, 5}, "2:1"}};
  for (const Case& c : cases) {
    TextCursor cursor = cursorOf("gain wo\n gain wo");
    cursor.pullLine();
    cursor.advance(8);
    EXPECT_FALSE(cursor.failAt(c.at, PARSE_INVALID_ACCESS));
    EXPECT_EQ(cursor.result(), PARSE_INVALID_ACCESS);
    EXPECT_EQ(textOf(cursor.position()), c.place);
  }
}

TEST(PiecesIn, AreThoseOfTheDaemon) {
  const std::string text = "\xEF\xBB\xBF" + std::string(1025, 'a') + "\nb\n\nc";
  const TextCursor::NextLine next = piecesIn(text);
  std::vector<std::string> pieces;
  for (std::string_view piece; next(piece);) pieces.emplace_back(piece);
  EXPECT_EQ(pieces, (std::vector<std::string>{std::string(1024, 'a'), "a\n", "b\n", "\n", "c"}));
}

TEST(TextCursor, TrimsWhiteSpaceOfBothEnds) {
  EXPECT_EQ(trimmed(" \t\r\v\fgain 2\n "), "gain 2");
  EXPECT_EQ(trimmed(" \n"), "");
  EXPECT_EQ(trimmed(""), "");
}

}  // namespace
