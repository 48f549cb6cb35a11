#include "deflang/text/range_reader.h"

#include <gtest/gtest.h>

#include "tests/support/reader.h"

namespace {

Stop readText(RangeReader& reader, std::string_view text) {
  return feedLines([&reader](Cursor& cursor) { return reader.read(cursor); }, linesOf(text));
}

TEST(RangeReader, ReadsEveryFormOfItem) {
  struct Case {
    std::string_view text;
    std::string_view statement;
  };
  const Case cases[] = {
      {"{ 0..255 }", "() { [0]..[255] }"},
      {"{0..255}", "() { [0]..[255] }"},
      {"{ 7 }", "() { [7] }"},
      {"{ -5 .. -1 }", "() { [-5]..[-1] }"},
      {"{ 0 .. 0x10, 32, 64..127 }", "() { [0]..[16] [32] [64]..[127] }"},
      {"{ \"auto\", \"on\" , 1 }", "() { 'auto' 'on' [1] }"},
      {"{ \"\" }", "() { '' }"},
      {"{}", "() { }"},
      {"{ }", "() { }"},
      {"{ (a)..(b + 1) }", "() { [a]..[b + 1] }"},
      {"{ (-1)..5, 0..(a), (c) }", "() { [-1]..[5] [0]..[a] [c] }"},
      {"{ () }", "() { [] }"},
      {"{ ()..() }", "() { []..[] }"},
      {"{ (\"a\") }", "() { ['a'] }"},
      {"(mode == 1) { 0..9 }", "(mode == 1) { [0]..[9] }"},
      {"(mode == 1) { }", "(mode == 1) { }"},
      {"() { 1 }", "() { [1] }"},
      {"\n(\nm\n)\n{\n0\n..\n9\n,\n\"a\n b\"\n,\n(\nx\n)\n}\n", "(m) { [0]..[9] 'a b' [x] }"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    RangeReader reader;
    EXPECT_EQ(readText(reader, c.text).result, PARSE_DONE);
    EXPECT_EQ(textOf(reader.take()), c.statement);
  }
}

TEST(RangeReader, KeepsThePlaceOfEachItem) {
  RangeReader reader;
  EXPECT_EQ(readText(reader, "{ 0..9, \"a\n\", \n (x)..5 }"), (Stop{PARSE_DONE, 3, 9}));
  const RangeStatement statement = reader.take();
  ASSERT_EQ(statement.items.size(), 3U);
  EXPECT_EQ(textOf(statement.items[0].at), "1:2");
  EXPECT_EQ(placesOf(*statement.items[0].upper), "1:5");
  EXPECT_EQ(textOf(statement.items[1].at), "1:8");
  EXPECT_EQ(textOf(statement.items[2].at), "3:1");
  EXPECT_EQ(placesOf(statement.items[2].lower), "3:2");
}

TEST(RangeReader, EndsAfterItsBrace) {
  RangeReader reader;
  EXPECT_EQ(readText(reader, "{ 1 } ctrlRO"), (Stop{PARSE_DONE, 1, 5}));
}

TEST(RangeReader, FailsWithTheCaretAtTheFirstWrongCharacter) {
  struct Case {
    std::string_view text;
    Stop stop;
  };
  const Case cases[] = {
      {"0..5", {PARSE_SYNTAX_ERROR, 1, 0}},
      {"(a) (b) { 1 }", {PARSE_SYNTAX_ERROR, 1, 4}},
      {"{ , }", {PARSE_SYNTAX_ERROR, 1, 2}},
      {"{ 1, }", {PARSE_SYNTAX_ERROR, 1, 5}},
      {"{ 1,,2 }", {PARSE_SYNTAX_ERROR, 1, 4}},
      {"{ 0.. }", {PARSE_SYNTAX_ERROR, 1, 6}},
      {"{ ..5 }", {PARSE_SYNTAX_ERROR, 1, 2}},
      {"{ 0...5 }", {PARSE_SYNTAX_ERROR, 1, 5}},
      {"{ 0.5 }", {PARSE_SYNTAX_ERROR, 1, 3}},
      {"{ 0. .5 }", {PARSE_SYNTAX_ERROR, 1, 3}},
      {"{ 0..5..9 }", {PARSE_SYNTAX_ERROR, 1, 6}},  // the upper number does not stop at "."
      {"{ 0..(5)..9 }", {PARSE_SYNTAX_ERROR, 1, 8}},
      {"{ 12ab }", {PARSE_SYNTAX_ERROR, 1, 4}},
      {"{ 1..2x }", {PARSE_SYNTAX_ERROR, 1, 6}},
      {"{ a..b }", {PARSE_SYNTAX_ERROR, 1, 2}},
      {"{ 1 2 }", {PARSE_SYNTAX_ERROR, 1, 4}},
      {"{ \"a\"..\"b\" }", {PARSE_SYNTAX_ERROR, 1, 5}},
      {"{ \"a\" \"b\" }", {PARSE_SYNTAX_ERROR, 1, 6}},
      {"{ 0..\"b\" }", {PARSE_SYNTAX_ERROR, 1, 5}},
      {"{ (a) (b) }", {PARSE_SYNTAX_ERROR, 1, 6}},
      {"{ (a = 1) }", {PARSE_SYNTAX_ERROR, 1, 5}},
      {"{ 1 {", {PARSE_SYNTAX_ERROR, 1, 4}},
      {"{ 1\n ) }", {PARSE_SYNTAX_ERROR, 2, 1}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    RangeReader reader;
    EXPECT_EQ(readText(reader, c.text), c.stop);
  }
}

TEST(RangeReader, GoesOnWithTheNextLineAtEveryStage) {
  const std::string_view whole = "(m) { 0 .. (x) , \"a\" , 7 }";
  for (size_t length = 0; length < whole.size(); ++length) {
    if (whole[length] != ' ') continue;
    SCOPED_TRACE(whole.substr(0, length));
    RangeReader reader;
    EXPECT_EQ(readText(reader, whole.substr(0, length)).result, PARSE_CONTINUES);
    EXPECT_EQ(readText(reader, whole.substr(length)).result, PARSE_DONE);
    EXPECT_EQ(textOf(reader.take()), "(m) { [0]..[x] 'a' [7] }");
  }
}

TEST(RangeReader, StartsAnewAfterReset) {
  for (const std::string_view before : {"(a", "{ 1, \"b", "{ 1..(c", "{ 1 }"}) {
    SCOPED_TRACE(before);
    RangeReader reader;
    readText(reader, before);
    reader.reset();
    EXPECT_EQ(readText(reader, "(d) { \"e\", (f) }").result, PARSE_DONE);
    EXPECT_EQ(textOf(reader.take()), "(d) { 'e' [f] }");
  }
}

}  // namespace
