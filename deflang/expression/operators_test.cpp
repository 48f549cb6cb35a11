#include "deflang/expression/operators.h"

#include <gtest/gtest.h>

#include <string>

#include "deflang/expression/token.h"

namespace {

struct OperatorRow {
  std::string text;
  int32_t code;
  int level;
};

const OperatorRow ROWS[] = {
    {"||", 0, 10}, {"&&", 1, 9},  {"|", 2, 8},   {"^", 3, 7},  {"&", 4, 6},
    {"==", 5, 5},  {"!=", 6, 5},  {"<", 7, 4},   {">", 8, 4},  {"<=", 9, 4},
    {">=", 10, 4}, {"<<", 11, 3}, {">>", 12, 3}, {"+", 13, 2}, {"-", 14, 2},
    {"*", 15, 1},  {"/", 16, 1},  {"%", 17, 1},  {"$", 18, 0},
};

TEST(Operators, HaveATextACodeAndALevel) {
  for (const OperatorRow& row : ROWS) {
    SCOPED_TRACE(row.text);
    for (const char* after : {"", " ", "1", "a", "(", "\""}) {
      SCOPED_TRACE(after);
      const std::string rest = row.text + after;
      const std::optional<OperatorText> found = operatorAt(rest);
      ASSERT_TRUE(found.has_value());
      EXPECT_EQ(found->text, row.text);
      EXPECT_EQ(found->code, row.code);
    }
    EXPECT_EQ(operatorText(row.code), row.text);
    EXPECT_EQ(precedence(row.code), row.level);
    EXPECT_TRUE(isOperator(row.code));
    EXPECT_EQ(comparesTexts(row.code), row.level == 4 || row.level == 5 || row.text == "$");
  }
}

struct PrefixCase {
  std::string rest;
  std::string text;
};

TEST(Operators, LongTextsWinOverTheirBeginnings) {
  const PrefixCase cases[] = {
      {"|||", "||"}, {"|&", "|"},   {"&&&", "&&"}, {"&|", "&"},   {"===", "=="},
      {"!==", "!="}, {"<=>", "<="}, {">==", ">="}, {"<<<", "<<"}, {">>=", ">>"},
      {"<>", "<"},   {"><", ">"},   {"--", "-"},   {"((", "("},   {"))", ")"},
  };
  for (const PrefixCase& c : cases) {
    SCOPED_TRACE(c.rest);
    const std::optional<OperatorText> found = operatorAt(c.rest);
    ASSERT_TRUE(found.has_value());
    EXPECT_EQ(found->text, c.text);
  }
}

TEST(Operators, ParenthesesHaveTheCodesOfTheirTokens) {
  EXPECT_EQ(operatorAt("(a")->code, TOKEN_OPEN);
  EXPECT_EQ(operatorAt(")")->code, TOKEN_CLOSE);
}

TEST(Operators, NothingElseIsOne) {
  for (const char* rest : {"", "=", "!", "= =", "! =", "a", " +", "1", "\"", "[", "]", "~", "@"}) {
    SCOPED_TRACE(rest);
    EXPECT_FALSE(operatorAt(rest).has_value());
  }
}

TEST(Operators, WhatIsNoneHasNoLevel) {
  for (const int32_t kind : {19, 20, 21, 22, -1, -2, -3, INT32_MAX, INT32_MIN}) {
    SCOPED_TRACE(kind);
    EXPECT_EQ(operatorText(kind), "");
    EXPECT_EQ(precedence(kind), -1);
    EXPECT_FALSE(isOperator(kind));
    EXPECT_FALSE(comparesTexts(kind));
  }
}

struct NumberCase {
  int32_t left;
  std::string operation;
  int32_t right;
  std::optional<int32_t> result;
};

int32_t codeOf(const std::string& operation) { return operatorAt(operation)->code; }

void expectResults(std::initializer_list<NumberCase> cases) {
  for (const NumberCase& c : cases) {
    SCOPED_TRACE(std::to_string(c.left) + " " + c.operation + " " + std::to_string(c.right));
    EXPECT_EQ(calculate(codeOf(c.operation), c.left, c.right), c.result);
  }
}

TEST(Calculate, WrapsTo32Bits) {
  expectResults({
      {2, "+", 3, 5},
      {INT32_MAX, "+", 1, INT32_MIN},
      {INT32_MIN, "+", -1, INT32_MAX},
      {2, "-", 3, -1},
      {INT32_MIN, "-", 1, INT32_MAX},
      {0, "-", INT32_MIN, INT32_MIN},
      {-4, "*", 3, -12},
      {65536, "*", 65536, 0},
      {INT32_MAX, "*", INT32_MAX, 1},
      {INT32_MIN, "*", -1, INT32_MIN},
  });
}

TEST(Calculate, DividesWithoutTraps) {
  expectResults({
      {7, "/", 2, 3},  // truncates toward zero
      {-7, "/", 2, -3},
      {7, "/", -2, -3},
      {0, "/", 5, 0},
      {7, "/", 0, std::nullopt},
      {0, "/", 0, std::nullopt},
      {7, "/", -1, -7},
      {INT32_MIN, "/", -1, INT32_MIN},
      {INT32_MIN, "/", 1, INT32_MIN},
      {7, "%", 3, 1},
      {-7, "%", 3, -1},  // the sign of the left operand
      {7, "%", -3, 1},
      {7, "%", 0, std::nullopt},
      {7, "%", -1, 0},
      {INT32_MIN, "%", -1, 0},
  });
}

TEST(Calculate, ShiftsByAnyCount) {
  expectResults({
      {1, "<<", 0, 1},           {1, "<<", 30, 1 << 30},    {1, "<<", 31, INT32_MIN},
      {1, "<<", 32, 0},          {1, "<<", 40, 0},          {1, "<<", INT32_MAX, 0},
      {1, "<<", -1, 0},  // no count that fits: every bit is moved out
      {1, "<<", INT32_MIN, 0},   {-1, "<<", 4, -16},        {3, "<<", 31, INT32_MIN},
      {8, ">>", 2, 2},           {-8, ">>", 0, -8},         {-8, ">>", 2, -2},
      {INT32_MIN, ">>", 31, -1}, {INT32_MAX, ">>", 30, 1},  {-8, ">>", 32, -1},  // the sign is left
      {-8, ">>", 40, -1},        {8, ">>", 40, 0},          {8, ">>", -1, 0},
      {-8, ">>", -1, -1},        {-8, ">>", INT32_MIN, -1}, {INT32_MAX, ">>", 40, 0},
      {INT32_MIN, ">>", 40, -1},  // no bit but the sign is left
  });
}

TEST(Calculate, CombinesBits) {
  expectResults({
      {12, "&", 10, 8},
      {12, "|", 10, 14},
      {12, "^", 10, 6},
      {-1, "&", INT32_MIN, INT32_MIN},
      {0, "|", INT32_MIN, INT32_MIN},
      {-1, "^", -1, 0},
  });
}

TEST(Calculate, LogicGivesOneOrZero) {
  expectResults({
      {0, "&&", 0, 0},
      {5, "&&", 0, 0},
      {0, "&&", 5, 0},
      {5, "&&", -5, 1},
      {0, "||", 0, 0},
      {5, "||", 0, 1},
      {0, "||", 5, 1},
      {5, "||", 7, 1},
  });
}

TEST(Calculate, ComparesWithSign) {
  expectResults({
      {1, "==", 1, 1},
      {1, "==", 2, 0},
      {1, "!=", 1, 0},
      {1, "!=", 2, 1},
      {-1, "<", 0, 1},
      {0, "<", 0, 0},
      {1, "<", 0, 0},
      {INT32_MIN, "<", 1, 1},
      {-1, ">", 0, 0},
      {0, ">", 0, 0},
      {1, ">", 0, 1},
      {INT32_MAX, ">", INT32_MIN, 1},
      {0, "<=", 0, 1},
      {1, "<=", 0, 0},
      {-1, "<=", 0, 1},
      {0, ">=", 0, 1},
      {1, ">=", 0, 1},
      {-1, ">=", 0, 0},
  });
}

TEST(Calculate, KnowsNoOtherOperator) {
  for (const int32_t code : {static_cast<int32_t>(OP_CONTAINS), 19, 22, -1}) {
    SCOPED_TRACE(code);
    EXPECT_EQ(calculate(code, 1, 1), std::nullopt);
  }
}

struct OneSidedCase {
  std::string operation;
  int32_t defined;
  std::optional<int32_t> result;
};

TEST(Absorb, TheDefinedSideDecidesWhereTheOtherOneCannot) {
  const OneSidedCase cases[] = {
      {"&", 0, 0},    {"&", 1, std::nullopt},  {"&", -1, std::nullopt},
      {"|", -1, -1},  {"|", 0, std::nullopt},  {"|", 1, std::nullopt},
      {"&&", 0, 0},   {"&&", 1, std::nullopt}, {"||", 5, 5},  // the value itself
      {"||", -1, -1}, {"||", 0, std::nullopt}, {"&&", -1, std::nullopt},
  };
  for (const OneSidedCase& c : cases) {
    SCOPED_TRACE(c.operation + " " + std::to_string(c.defined));
    EXPECT_EQ(absorb(codeOf(c.operation), c.defined), c.result);
  }
}

TEST(Absorb, NoOtherOperatorDoesWithOneOperand) {
  for (int32_t code = OP_EQUAL; code <= OP_CONTAINS; ++code) {
    for (const int32_t defined : {0, 1, -1, 5}) {
      SCOPED_TRACE(std::to_string(code) + " " + std::to_string(defined));
      EXPECT_EQ(absorb(code, defined), std::nullopt);
    }
  }
  EXPECT_EQ(absorb(OP_BIT_XOR, 0), std::nullopt);
}

struct TextCase {
  std::string left;
  std::string operation;
  std::string right;
  std::optional<int32_t> result;
};

TEST(CompareTexts, GoesByteByByte) {
  const TextCase cases[] = {
      {"auto", "==", "auto", 1},
      {"auto", "==", "Auto", 0},
      {"", "==", "", 1},
      {"auto", "!=", "auto", 0},
      {"auto", "!=", "aut", 1},
      {"9", "<", "10", 0},  // texts, not numbers
      {"10", "<", "9", 1},
      {"a", "<", "ab", 1},
      {"ab", ">", "a", 1},
      {"a", ">", "a", 0},
      {"a", "<=", "a", 1},
      {"b", "<=", "a", 0},
      {"a", ">=", "a", 1},
      {"a", ">=", "b", 0},
      {"z", "<", "\x80", 1},  // bytes have no sign
      {"a", "+", "b", std::nullopt},
  };
  for (const TextCase& c : cases) {
    SCOPED_TRACE("\"" + c.left + "\" " + c.operation + " \"" + c.right + "\"");
    EXPECT_EQ(compareTexts(codeOf(c.operation), c.left, c.right), c.result);
  }
}

TEST(CompareTexts, LooksForTheRightTextWithinTheLeftOne) {
  const TextCase cases[] = {
      {"1080i", "$", "80", 1}, {"1080i", "$", "1080i", 1}, {"1080i", "$", "1080i/", 0},
      {"1080i", "$", "81", 0}, {"1080i", "$", "", 1},      {"", "$", "", 1},
      {"", "$", "x", 0},       {"1080i", "$", "i", 1},     {"1080i", "$", "1", 1},
  };
  for (const TextCase& c : cases) {
    SCOPED_TRACE("\"" + c.left + "\" $ \"" + c.right + "\"");
    EXPECT_EQ(compareTexts(OP_CONTAINS, c.left, c.right), c.result);
  }
}

TEST(CompareTexts, LooksInLinearTime) {
  // Half a megabyte each: a search that starts anew at each place would not end in time.
  const std::string text(1 << 20, 'a');
  const std::string part = std::string(1 << 19, 'a') + "b";
  EXPECT_EQ(compareTexts(OP_CONTAINS, text, part), 0);
}

}  // namespace
