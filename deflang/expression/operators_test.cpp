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
  ASSERT_EQ(std::size(ROWS), static_cast<size_t>(OPERATOR_COUNT));
  for (const OperatorRow& row : ROWS) {
    SCOPED_TRACE(row.text);
    for (const char* after : {"", " ", "1", "a", "(", "\""}) {
      SCOPED_TRACE(after);
      const std::string rest = row.text + after;
      const OperatorText* found = operatorAt(rest);
      ASSERT_NE(found, nullptr);
      EXPECT_EQ(found->text, row.text);
      EXPECT_EQ(found->code, row.code);
    }
    EXPECT_EQ(precedence(row.code), row.level);
    EXPECT_TRUE(isOperator(row.code));
    EXPECT_EQ(isComparison(row.code), row.level == 4 || row.level == 5);
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
    const OperatorText* found = operatorAt(c.rest);
    ASSERT_NE(found, nullptr);
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
    EXPECT_EQ(operatorAt(rest), nullptr);
  }
}

TEST(Operators, WhatIsNoneHasNoLevel) {
  for (const int32_t kind : {19, 20, 21, -1, -2, -3, INT32_MAX, INT32_MIN}) {
    SCOPED_TRACE(kind);
    EXPECT_EQ(precedence(kind), -1);
    EXPECT_FALSE(isOperator(kind));
    EXPECT_FALSE(isComparison(kind));
  }
}

}  // namespace
