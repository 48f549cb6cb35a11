#include "deflang/text/default_reader.h"

#include <gtest/gtest.h>

#include "tests/support/reader.h"

namespace {

Stop readText(DefaultReader& reader, std::string_view text) {
  return feedLines([&reader](Cursor& cursor) { return reader.read(cursor); }, linesOf(text));
}

TEST(DefaultReader, ReadsEveryFormOfValue) {
  struct Case {
    std::string_view text;
    std::string_view statement;
    std::string_view at;
  };
  const Case cases[] = {
      {"{ 128 }", "() { [128] }", "1:2"},
      {"{128}", "() { [128] }", "1:1"},
      {"{ -0x10 }", "() { [-16] }", "1:2"},
      {"{ \"auto\" }", "() { 'auto' }", "1:2"},
      {"{ \"\" }", "() { '' }", "1:2"},
      {"{ \" a } b \" }", "() { ' a } b ' }", "1:2"},
      {"{ \"one\n two\" }", "() { 'one two' }", "1:2"},
      {"{ (a + 1) }", "() { [a + 1] }", "1:2"},
      {"{ () }", "() { [] }", "1:2"},
      {"(mode == 1) { 5 }", "(mode == 1) { [5] }", "1:14"},
      {"() { 5 }", "() { [5] }", "1:5"},
      {"\n(\nm\n)\n{\n (\nx\n)\n}\n", "(m) { [x] }", "6:1"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    DefaultReader reader;
    EXPECT_EQ(readText(reader, c.text).result, PARSE_DONE);
    const DefaultStatement statement = reader.take();
    EXPECT_EQ(textOf(statement), c.statement);
    EXPECT_EQ(textOf(statement.at), c.at);
  }
}

TEST(DefaultReader, EndsAfterItsBrace) {
  DefaultReader reader;
  EXPECT_EQ(readText(reader, "{ 1 } }"), (Stop{PARSE_DONE, 1, 5}));
}

TEST(DefaultReader, FailsWithTheCaretAtTheFirstWrongCharacter) {
  struct Case {
    std::string_view text;
    Stop stop;
  };
  const Case cases[] = {
      {"128", {PARSE_SYNTAX_ERROR, 1, 0}},         {"(a) (b) { 1 }", {PARSE_SYNTAX_ERROR, 1, 4}},
      {"(a) 1", {PARSE_SYNTAX_ERROR, 1, 4}},       {"{ }", {PARSE_SYNTAX_ERROR, 1, 2}},
      {"{ 12ab }", {PARSE_SYNTAX_ERROR, 1, 4}},    {"{ 1,2 }", {PARSE_SYNTAX_ERROR, 1, 3}},
      {"{ 1..2 }", {PARSE_SYNTAX_ERROR, 1, 3}},    {"{ auto }", {PARSE_SYNTAX_ERROR, 1, 2}},
      {"{ 1 2 }", {PARSE_SYNTAX_ERROR, 1, 4}},     {"{ \"a\" 2 }", {PARSE_SYNTAX_ERROR, 1, 6}},
      {"{ (a) (b) }", {PARSE_SYNTAX_ERROR, 1, 6}}, {"{ (a = 1) }", {PARSE_SYNTAX_ERROR, 1, 5}},
      {"{ 1\n x", {PARSE_SYNTAX_ERROR, 2, 1}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    DefaultReader reader;
    EXPECT_EQ(readText(reader, c.text), c.stop);
  }
}

TEST(DefaultReader, GoesOnWithTheNextLineAtEveryStage) {
  struct Case {
    std::string_view text;
    std::string_view statement;
  };
  const Case cases[] = {
      {" ( m ) { \"a b\" } ", "(m) { 'a b' }"},
      {" { ( x + 1 ) } ", "() { [x + 1] }"},
      {" { 5 } ", "() { [5] }"},
  };
  for (const Case& c : cases) {
    for (size_t length = 0; length + 1 < c.text.size(); ++length) {
      if (c.text[length] != ' ') continue;
      SCOPED_TRACE(c.text.substr(0, length));
      DefaultReader reader;
      EXPECT_EQ(readText(reader, c.text.substr(0, length)).result, PARSE_CONTINUES);
      EXPECT_EQ(readText(reader, c.text.substr(length)).result, PARSE_DONE);
      EXPECT_EQ(textOf(reader.take()), c.statement);
    }
  }
}

TEST(DefaultReader, StartsAnewAfterReset) {
  for (const std::string_view before : {"(a", "{ \"b", "{ (c", "{ 1 }"}) {
    SCOPED_TRACE(before);
    DefaultReader reader;
    readText(reader, before);
    reader.reset();
    EXPECT_EQ(readText(reader, "(d) { (e) }").result, PARSE_DONE);
    EXPECT_EQ(textOf(reader.take()), "(d) { [e] }");
  }
}

}  // namespace
