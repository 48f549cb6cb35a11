#include "deflang/text/quoted_text.h"

#include <gtest/gtest.h>

#include "base/value_limit.h"
#include "tests/support/reader.h"

namespace {

// Opens the text with the first character of `lines`, then reads on.
Stop readText(QuotedText& text, const std::vector<std::string_view>& lines) {
  return feedLines(
      [&text](Cursor& cursor) {
        if (!text.isOpen() && !text.open(cursor)) return static_cast<int>(PARSE_SYNTAX_ERROR);
        return text.read(cursor);
      },
      lines);
}

TEST(QuotedText, KeepsWhatStandsBetweenTheSigns) {
  struct Case {
    std::vector<std::string_view> lines;
    std::string_view text;
    Stop stop;
  };
  const Case cases[] = {
      {{"\"abc\"d"}, "abc", {PARSE_DONE, 1, 5}},
      {{"\"\""}, "", {PARSE_DONE, 1, 2}},
      {{"\" a \t b \""}, " a \t b ", {PARSE_DONE, 1, 9}},
      {{"\"# {}()[],..->\\\""}, "# {}()[],..->\\", {PARSE_DONE, 1, 16}},
      {{"\"one\n", "two\"\n"}, "onetwo", {PARSE_DONE, 2, 4}},
      {{"\"one \n", "  two\""}, "one   two", {PARSE_DONE, 2, 6}},
      {{"\"\n", "\n", "\""}, "", {PARSE_DONE, 3, 1}},
      {{"\"one\r\n", "\""}, "one\r", {PARSE_DONE, 2, 1}},  // only the newline goes
      {{"\"o", "ne", "\""}, "one", {PARSE_DONE, 3, 1}},    // the pieces of one long line
      {{"\"one", "", "\""}, "one", {PARSE_DONE, 3, 1}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.lines.front());
    QuotedText text;
    EXPECT_EQ(readText(text, c.lines), c.stop);
    EXPECT_FALSE(text.isOpen());
    EXPECT_EQ(text.take(), c.text);
    EXPECT_EQ(text.take(), "");
  }
}

TEST(QuotedText, StaysOpenUntilItsClosingSign) {
  QuotedText text;
  EXPECT_FALSE(text.isOpen());
  EXPECT_EQ(readText(text, {"\"one\n", "two"}), (Stop{PARSE_CONTINUES, 2, 3}));
  EXPECT_TRUE(text.isOpen());
  EXPECT_EQ(readText(text, {" three\""}), (Stop{PARSE_DONE, 1, 7}));
  EXPECT_EQ(text.take(), "onetwo three");
}

TEST(QuotedText, OpensOnlyAtItsOpeningSign) {
  QuotedText text;
  EXPECT_EQ(readText(text, {"'a'"}), (Stop{PARSE_SYNTAX_ERROR, 1, 0}));
  EXPECT_EQ(readText(text, {""}), (Stop{PARSE_SYNTAX_ERROR, 1, 0}));
  EXPECT_FALSE(text.isOpen());
}

TEST(QuotedText, HasSignsOfItsOwnWhereTheyAreGiven) {
  QuotedText text('[', ']');
  EXPECT_EQ(readText(text, {"[a\"[b]]"}), (Stop{PARSE_DONE, 1, 6}));
  EXPECT_EQ(text.take(), "a\"[b");
}

TEST(QuotedText, ForgetsAnUnfinishedTextOnReset) {
  QuotedText text;
  readText(text, {"\"one"});
  text.reset();
  EXPECT_FALSE(text.isOpen());
  EXPECT_EQ(readText(text, {"\"two\""}), (Stop{PARSE_DONE, 1, 5}));
  EXPECT_EQ(text.take(), "two");
}

TEST(QuotedText, IsNoLongerThanAValueMayBe) {
  const std::string longest(MAX_VALUE_BYTES, 'x');
  const std::string fits = "\"" + longest + "\"";
  const std::string half = longest.substr(longest.size() / 2);
  struct Case {
    const char* subject;
    std::vector<std::string_view> lines;
    Stop stop;
  };
  const std::string tooLong = "\"x" + longest + "\"";
  const std::string neverClosed = "\"" + half;
  const Case cases[] = {
      {"longest", {fits}, {PARSE_DONE, 1, MAX_VALUE_BYTES + 2}},
      {"longer by one", {tooLong}, {PARSE_SYNTAX_ERROR, 1, 1}},
      {"two halves", {neverClosed, half, "\""}, {PARSE_DONE, 3, 1}},
      {"two halves and one", {neverClosed, half, "x\""}, {PARSE_SYNTAX_ERROR, 3, 0}},
      {"never closed", {neverClosed, half, "x"}, {PARSE_SYNTAX_ERROR, 3, 0}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.subject);
    QuotedText text;
    EXPECT_EQ(readText(text, c.lines), c.stop);
  }
}

TEST(QuotedText, ForgetsATextThatNobodyTookOnReset) {
  QuotedText text;
  readText(text, {"\"one\""});
  text.reset();
  EXPECT_EQ(text.take(), "");
}

}  // namespace
