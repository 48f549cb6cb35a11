#include "deflang/text/value_reader.h"

#include <gtest/gtest.h>

#include "tests/support/reader.h"

namespace {

constexpr StopSet STOPS(",.}");

Stop readText(ValueReader& reader, std::string_view text) {
  return feedLines([&reader](Cursor& cursor) { return reader.read(cursor, STOPS); }, linesOf(text));
}

TEST(ValueReader, ReadsABareNumberOrAnExpression) {
  struct Case {
    std::string_view text;
    Stop stop;
    std::string_view value;
    std::string_view places;
  };
  const Case cases[] = {
      {" 12..", {PARSE_DONE, 1, 3}, "12", "1:1"},
      {"-1,", {PARSE_DONE, 1, 2}, "-1", "1:0"},
      {"\n\n 0x10 ", {PARSE_DONE, 3, 5}, "16", "3:1"},
      {"(a + 1) ..", {PARSE_DONE, 1, 8}, "a + 1", "1:1 1:3 1:5"},
      {"\n(\"x\n y\")", {PARSE_DONE, 3, 4}, "'x y'", "2:1"},
      {"()", {PARSE_DONE, 1, 2}, "", ""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    ValueReader reader;
    EXPECT_EQ(readText(reader, c.text), c.stop);
    const Expression value = reader.take();
    EXPECT_EQ(textOf(value), c.value);
    EXPECT_EQ(placesOf(value), c.places);
    EXPECT_TRUE(reader.take().empty());
  }
}

TEST(ValueReader, FailsOnAnythingElse) {
  struct Case {
    std::string_view text;
    Stop stop;
  };
  const Case cases[] = {
      {" }", {PARSE_SYNTAX_ERROR, 1, 1}},      {" 12x", {PARSE_SYNTAX_ERROR, 1, 3}},
      {"gain", {PARSE_SYNTAX_ERROR, 1, 0}},    {"\"a\"", {PARSE_SYNTAX_ERROR, 1, 0}},
      {"(a = 1)", {PARSE_SYNTAX_ERROR, 1, 3}}, {"(a\n", {PARSE_CONTINUES, 1, 3}},
      {" \n", {PARSE_CONTINUES, 1, 2}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    ValueReader reader;
    EXPECT_EQ(readText(reader, c.text), c.stop);
  }
}

TEST(ValueReader, StartsAnewAfterReset) {
  for (const std::string_view before : {"5 ", "(a", "(a)"}) {
    SCOPED_TRACE(before);
    ValueReader reader;
    readText(reader, before);
    reader.reset();
    EXPECT_EQ(readText(reader, "(b)").result, PARSE_DONE);
    EXPECT_EQ(textOf(reader.take()), "b");
  }
}

}  // namespace
