#include "deflang/text/expression_grammar.h"

#include <gtest/gtest.h>

#include <string>

#include "base/value_limit.h"
#include "deflang/expression/operators.h"
#include "tests/support/reader.h"

namespace {

// A text in quotes, from the opening one on.
bool readOpened(TextCursor& cursor, std::string_view& text) {
  return cursor.expect("\"") && readQuoted(cursor, '"', text);
}

TEST(ReadQuoted, KeepsWhatIsBetweenTheSigns) {
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
    std::string_view read;
    EXPECT_EQ(readText(readOpened, c.lines, read), c.stop);
    EXPECT_EQ(read, c.text);
  }
}

TEST(ReadQuoted, EndsAtTheGivenSign) {
  const auto read = [](TextCursor& cursor, std::string_view& text) {
    return cursor.expect("[") && readQuoted(cursor, ']', text);
  };
  std::string_view text;
  EXPECT_EQ(readText(read, "[a\"[b]]", text), (Stop{PARSE_DONE, 1, 6}));
  EXPECT_EQ(text, "a\"[b");
}

TEST(ReadQuoted, IsNothingWhereTheTextEndsBefore) {
  std::string_view read;
  EXPECT_EQ(readText(readOpened, "\"one\ntwo", read), (Stop{TEXT_ENDS, 2, 0}));
  EXPECT_EQ(read, "");
}

TEST(ReadQuoted, IsNoLongerThanAValueMayBe) {
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
    std::string_view read;
    EXPECT_EQ(readText(readOpened, c.lines, read), c.stop);
  }
}

TEST(ReadExpression, MakesTokens) {
  struct Case {
    std::string_view text;
    std::string_view tokens;
    std::string_view places;
  };
  const Case cases[] = {
      {"()", "", ""},
      {"( )", "", ""},
      {"(a)", "a", "1:1"},
      {"( mode == 2 )", "mode == 2", "1:2 1:7 1:10"},
      {"(mode==2&&on)", "mode == 2 && on", "1:1 1:5 1:7 1:8 1:10"},
      {"((a+1)*2)", "( a + 1 ) * 2", "1:1 1:2 1:3 1:4 1:5 1:6 1:7"},
      {"(0x10+017+8)", "16 + 15 + 8", "1:1 1:5 1:6 1:9 1:10"},
      {"(4294967301)", "5", "1:1"},  // 32 bits of it
      {"(sw::this > vidStd::mode::spal)", "sw::this > vidStd::mode::spal", "1:1 1:10 1:12"},
      {"(vidStd::in[2]::spal + 1)", "vidStd::in[2]::spal + 1", "1:1 1:21 1:23"},
      {"(vidStd::in[ 2 ]\n[a] ::spal)", "vidStd::in[2][a]::spal", "1:1"},
      {"(in[2]::spal)", "in[2] ::spal", "1:1 1:6"},  // only a figure's name goes on
      {"(vidStd::in::spal ::x)", "vidStd::in::spal ::x", "1:1 1:18"},
      {"(12ab 0x 08)", "12ab 0x 08", "1:1 1:6 1:9"},  // variables: not whole numbers
      {"(a.b,c;d#e{f}~)", "a.b,c;d#e{f}~", "1:1"},
      {"(h\xf6he\x85)", "h\xf6he\x85", "1:1"},
      {"(a\"b\" + 1)", "a\"b\" + 1", "1:1 1:6 1:8"},  // a quote within a word opens no string
      {"(\"b\"a)", "'b' a", "1:1 1:4"},
      {"(m == \"a (b\")", "m == 'a (b'", "1:1 1:3 1:6"},
      {"(\"\")", "''", "1:1"},
      {"(a\n ==\n\n 5\n)", "a == 5", "1:1 2:1 4:1"},
      {"\n(a)", "a", "2:1"},
      {"(\"one\n  two\" + x)", "'one  two' + x", "1:1 2:7 2:9"},
      {"(1 2 + )", "1 2 +", "1:1 1:3 1:5"},  // whether it makes sense is checked later
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    Expression read;
    EXPECT_EQ(readText(readExpression, c.text, read).result, PARSE_DONE);
    EXPECT_EQ(textOf(read), c.tokens);
    EXPECT_EQ(placesOf(read), c.places);
  }
}

TEST(ReadExpression, KnowsEveryOperator) {
  struct Case {
    std::string_view text;
    int32_t kind;
  };
  const Case cases[] = {
      {"||", OP_LOGICAL_OR}, {"&&", OP_LOGICAL_AND}, {"==", OP_EQUAL},
      {"!=", OP_NOT_EQUAL},  {"<=", OP_LESS_EQUAL},  {">=", OP_GREATER_EQUAL},
      {"<<", OP_SHIFT_LEFT}, {">>", OP_SHIFT_RIGHT}, {"|", OP_BIT_OR},
      {"^", OP_BIT_XOR},     {"&", OP_BIT_AND},      {"<", OP_LESS},
      {">", OP_GREATER},     {"+", OP_ADD},          {"-", OP_SUBTRACT},
      {"*", OP_MULTIPLY},    {"/", OP_DIVIDE},       {"%", OP_REMAINDER},
      {"$", OP_CONTAINS},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    Expression read;
    EXPECT_EQ(readText(readExpression, "(a" + std::string(c.text) + "b)", read).result, PARSE_DONE);
    ASSERT_EQ(read.tokens.size(), 3U);
    EXPECT_EQ(read.tokens[1].kind, c.kind);
  }
}

TEST(ReadExpression, AddsIndexSuffixesToAVariable) {
  struct Case {
    std::string_view text;
    std::string_view tokens;
  };
  const Case cases[] = {
      {"(gain[2] + 1)", "gain[2] + 1"},
      {"(gain[ \t2\v ])", "gain[2]"},
      {"(gain[1][ch])", "gain[1][ch]"},
      {"(gain [1] [2])", "gain[1][2]"},
      {"(gain[])", "gain[]"},
      {"(gain[  ])", "gain[]"},
      {"(gain[a b (\"==[])", "gain[a b (\"==[]"},  // all text up to the bracket
      {"(gain\n[1\n2 ]\n)", "gain[12]"},
      {"(gain[1]2)", "gain[1] 2"},
      {"(1 - -gain[-1])", "1 - - gain[-1]"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    Expression read;
    EXPECT_EQ(readText(readExpression, c.text, read).result, PARSE_DONE);
    EXPECT_EQ(textOf(read), c.tokens);
  }
}

TEST(ReadExpression, AddsAFigureOnlyToAnIndexedStandard) {
  struct Case {
    std::string_view text;
    std::string_view tokens;
  };
  const Case cases[] = {
      {"(vidStd::in[1]::spal)", "vidStd::in[1]::spal"},
      {"(vidStd::in[1] ::spal)", "vidStd::in[1]::spal"},
      {"(vidStd::in[1] spal)", "vidStd::in[1] spal"},
      {"(vidStd::in ::spal)", "vidStd::in ::spal"},
      {"(in[1] ::spal)", "in[1] ::spal"},
      {"(::spal)", "::spal"},
      {"(vidStd::in[1] + ::spal)", "vidStd::in[1] + ::spal"},
      {"(\"vidStd::in[1]\" ::spal)", "'vidStd::in[1]' ::spal"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    Expression read;
    EXPECT_EQ(readText(readExpression, c.text, read).result, PARSE_DONE);
    EXPECT_EQ(textOf(read), c.tokens);
  }
}

TEST(ReadExpression, FoldsAMinusIntoItsNumber) {
  struct Case {
    std::string_view text;
    std::string_view tokens;
    std::string_view places;
  };
  const Case cases[] = {
      {"(-3)", "-3", "1:1"},
      {"(-3 + x)", "-3 + x", "1:1 1:4 1:6"},
      {"(x - -3)", "x - -3", "1:1 1:3 1:5"},
      {"(x - - 3 - -4)", "x - -3 - -4", "1:1 1:3 1:5 1:9 1:11"},
      {"(x - 3)", "x - 3", "1:1 1:3 1:5"},  // a subtraction
      {"(2 - 3)", "2 - 3", "1:1 1:3 1:5"},
      {"(-3 - 4)", "-3 - 4", "1:1 1:4 1:6"},
      {"(-x)", "- x", "1:1 1:2"},  // only numbers
      {"(1 - -x)", "1 - - x", "1:1 1:3 1:5 1:6"},
      {"(x * (-3))", "x * ( - 3 )", "1:1 1:3 1:5 1:6 1:7 1:8"},  // not after "("
      {"((-3))", "( - 3 )", "1:1 1:2 1:3 1:4"},
      {"((x) - 3)", "( x ) - 3", "1:1 1:2 1:3 1:5 1:7"},
      {"(- - 3)", "- -3", "1:1 1:3"},
      {"(x - - - 3)", "x - - -3", "1:1 1:3 1:5 1:7"},  // one sign for one number
      {"(-)", "-", "1:1"},
      {"(1 -)", "1 -", "1:1 1:3"},
      {"(-\n3)", "-3", "1:1"},
      {"(-2147483648)", "-2147483648", "1:1"},
      {"(1 - -2147483648)", "1 - -2147483648", "1:1 1:3 1:5"},
      {"(\"a\" + -1 == -1)", "'a' + -1 == -1", "1:1 1:5 1:7 1:10 1:13"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    Expression read;
    EXPECT_EQ(readText(readExpression, c.text, read).result, PARSE_DONE);
    EXPECT_EQ(textOf(read), c.tokens);
    EXPECT_EQ(placesOf(read), c.places);
  }
}

TEST(ReadExpression, FailsWhereNoElementStands) {
  struct Case {
    std::string_view text;
    Stop stop;
  };
  const Case cases[] = {
      {"a", {PARSE_SYNTAX_ERROR, 1, 0}},         {"  {", {PARSE_SYNTAX_ERROR, 1, 2}},
      {"(a = 1)", {PARSE_SYNTAX_ERROR, 1, 3}},   {"(a === 1)", {PARSE_SYNTAX_ERROR, 1, 5}},
      {"(!a)", {PARSE_SYNTAX_ERROR, 1, 1}},      {"([1])", {PARSE_SYNTAX_ERROR, 1, 1}},
      {"(5 [1])", {PARSE_SYNTAX_ERROR, 1, 3}},   {"(\"a\"[1])", {PARSE_SYNTAX_ERROR, 1, 4}},
      {"(a + [1])", {PARSE_SYNTAX_ERROR, 1, 5}}, {"((a)[1])", {PARSE_SYNTAX_ERROR, 1, 4}},
      {"(a])", {PARSE_SYNTAX_ERROR, 1, 2}},      {"(a\n  =\n1)", {PARSE_SYNTAX_ERROR, 2, 2}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    Expression read;
    EXPECT_EQ(readText(readExpression, c.text, read), c.stop);
  }
}

TEST(ReadExpression, EndsAfterItsLastParenthesis) {
  struct Case {
    std::string_view text;
    Stop stop;
  };
  const Case cases[] = {
      {"(a) \t{", {PARSE_DONE, 1, 3}},   {"(a)\n{", {PARSE_DONE, 1, 3}},
      {"((a) )) x", {PARSE_DONE, 1, 6}}, {"", {TEXT_ENDS, 0, 0}},
      {"(a", {TEXT_ENDS, 1, 0}},         {"((a)\n", {TEXT_ENDS, 1, 0}},
      {"(a [1)\n", {TEXT_ENDS, 1, 0}},   {"(\"a)\n", {TEXT_ENDS, 1, 0}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    Expression read;
    EXPECT_EQ(readText(readExpression, c.text, read), c.stop);
    EXPECT_TRUE(c.stop.result == PARSE_DONE || read.empty());
  }
}

TEST(ReadExpression, NeitherDepthNorLengthHasALimit) {
  constexpr size_t count = 100'000;
  const std::string open(count, '(');
  const std::string close(count, ')');
  std::string sum = "1";
  for (size_t i = 1; i < count; ++i) sum += "+-1";
  Expression read;
  EXPECT_EQ(readText(readExpression, "(" + open + sum + close + ")", read).result, PARSE_DONE);
  ASSERT_EQ(read.tokens.size(), 4 * count - 1);
  EXPECT_EQ(read.tokens[3 * count - 2].number, -1);
}

}  // namespace
