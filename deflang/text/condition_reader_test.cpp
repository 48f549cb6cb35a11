#include "deflang/text/condition_reader.h"

#include <gtest/gtest.h>

#include "tests/support/reader.h"

namespace {

Stop readText(ConditionReader& reader, std::string_view text) {
  return feedLines([&reader](Cursor& cursor) { return reader.read(cursor); }, linesOf(text));
}

TEST(ConditionReader, ReadsAnOptionalConditionAndTheBrace) {
  struct Case {
    std::string_view text;
    Stop stop;
    std::string_view condition;
  };
  const Case cases[] = {
      {"{", {PARSE_DONE, 1, 1}, ""},
      {" { 5", {PARSE_DONE, 1, 2}, ""},
      {"(a == 1) {", {PARSE_DONE, 1, 10}, "a == 1"},
      {"(a){", {PARSE_DONE, 1, 4}, "a"},
      {"(){", {PARSE_DONE, 1, 3}, ""},
      {"\n(\na\n)\n\n{\n", {PARSE_DONE, 6, 1}, "a"},
      {"(\"x\n y\") {", {PARSE_DONE, 2, 6}, "'x y'"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    ConditionReader reader;
    EXPECT_EQ(readText(reader, c.text), c.stop);
    EXPECT_EQ(textOf(reader.take()), c.condition);
  }
}

TEST(ConditionReader, AcceptsOnlyTheBraceAfterACondition) {
  struct Case {
    std::string_view text;
    Stop stop;
  };
  const Case cases[] = {
      {"(a) (b) {", {PARSE_SYNTAX_ERROR, 1, 4}}, {"()(b) {", {PARSE_SYNTAX_ERROR, 1, 2}},
      {"(a)\n (b)", {PARSE_SYNTAX_ERROR, 2, 1}}, {"(a) 5", {PARSE_SYNTAX_ERROR, 1, 4}},
      {"5", {PARSE_SYNTAX_ERROR, 1, 0}},         {"}", {PARSE_SYNTAX_ERROR, 1, 0}},
      {"(a = 1) {", {PARSE_SYNTAX_ERROR, 1, 3}}, {"(a", {PARSE_CONTINUES, 1, 2}},
      {"(a) \n", {PARSE_CONTINUES, 1, 5}},       {" \n", {PARSE_CONTINUES, 1, 2}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    ConditionReader reader;
    EXPECT_EQ(readText(reader, c.text), c.stop);
  }
}

TEST(ConditionReader, StartsAnewAfterReset) {
  for (const std::string_view before : {"(a", "(a)", "(a) {"}) {
    SCOPED_TRACE(before);
    ConditionReader reader;
    readText(reader, before);
    reader.reset();
    EXPECT_EQ(readText(reader, "(b) {"), (Stop{PARSE_DONE, 1, 5}));
    EXPECT_EQ(textOf(reader.take()), "b");
  }
}

}  // namespace
