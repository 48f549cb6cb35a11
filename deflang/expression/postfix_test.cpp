#include "deflang/expression/postfix.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "deflang/expression/operators.h"
#include "tests/support/expressions.h"

namespace {

// "1 2 +" for "1 + 2"; strings and variables by their texts.
std::string show(const std::vector<const Token*>& order) {
  const char* texts[] = {"||", "&&", "|",  "^", "&", "==", "!=", "<", ">", "<=",
                         ">=", "<<", ">>", "+", "-", "*",  "/",  "%", "$"};
  std::string shown;
  for (const Token* token : order) {
    if (!shown.empty()) shown += ' ';
    if (isOperator(token->kind)) {
      shown += texts[token->kind];
    } else {
      shown +=
          token->kind == TOKEN_NUMBER ? std::to_string(token->number) : std::string(token->text);
    }
  }
  return shown;
}

struct OrderCase {
  std::string text;
  std::string postfix;
};

TEST(Postfix, FollowsPrecedenceAndGroups) {
  const OrderCase cases[] = {
      {"1", "1"},
      {"a", "a"},
      {"\"auto\"", "auto"},
      {"(1)", "1"},
      {"((a))", "a"},
      {"1 + 2", "1 2 +"},
      {"1 - 2 - 3", "1 2 - 3 -"},
      {"1 - (2 - 3)", "1 2 3 - -"},
      {"1 + 2 * 3", "1 2 3 * +"},
      {"(1 + 2) * 3", "1 2 + 3 *"},
      {"a * b $ c", "a b c $ *"},
      {"a || b && c | d ^ e & f == g < h << i + j * k $ l",
       "a b c d e f g h i j k l $ * + << < == & ^ | && ||"},
      {"a $ b * c + d << e < f == g & h ^ i | j && k || l",
       "a b $ c * d + e << f < g == h & i ^ j | k && l ||"},
      {"x - -3", "x -3 -"},
      {"-3 + x", "-3 x +"},
      {"0 - 5", "0 5 -"},
      {"(0 - 5)", "0 5 -"},
      {"1 2 +", "1 2 +"},  // operands are only counted
      {"+ 1 2", "1 2 +"},
      {"(1 2 +) * 3", "1 2 + 3 *"},
      {"1 (2) +", "1 2 +"},
      {"a b + + c", "a b + c +"},
  };
  for (const OrderCase& c : cases) {
    SCOPED_TRACE(c.text);
    const Expression expression = readExpression(c.text);
    std::vector<const Token*> order;
    EXPECT_EQ(postfixOrder(expression, order), 0);
    EXPECT_EQ(show(order), c.postfix);
  }
}

TEST(Postfix, ReplacesWhatWasThere) {
  const Expression first = readExpression("1 + 2");
  const Expression second = readExpression("3");
  std::vector<const Token*> order;
  EXPECT_EQ(postfixOrder(first, order), 0);
  EXPECT_EQ(postfixOrder(second, order), 0);
  EXPECT_EQ(show(order), "3");
}

struct Level {
  const char* text;
  int level;
};

const Level LEVELS[] = {
    {"$", 0},  {"%", 1},  {"/", 1},  {"*", 1},  {"-", 2},   {"+", 2},  {">>", 3},
    {"<<", 3}, {">=", 4}, {"<=", 4}, {">", 4},  {"<", 4},   {"!=", 5}, {"==", 5},
    {"&", 6},  {"^", 7},  {"|", 8},  {"&&", 9}, {"||", 10},
};

TEST(Postfix, EveryPairOfOperatorsBindsByItsLevel) {
  for (const Level& first : LEVELS) {
    for (const Level& second : LEVELS) {
      const std::string one = first.text;
      const std::string two = second.text;
      const std::string text = "a " + one + " b " + two + " c";
      SCOPED_TRACE(text);
      const bool leftFirst = first.level <= second.level;
      const Expression expression = readExpression(text);
      std::vector<const Token*> order;
      EXPECT_EQ(postfixOrder(expression, order), 0);
      EXPECT_EQ(show(order), leftFirst ? "a b " + one + " c " + two : "a b c " + two + " " + one);
    }
  }
}

struct FailureCase {
  std::string text;
  int position;
};

TEST(Postfix, TellsTheTokenAtWhichItFails) {
  const FailureCase cases[] = {
      {"", -1},
      {"+", 1},
      {"1 +", 2},
      {"+ 1", 2},
      {"1 2", 2},
      {"1 2 3", 3},
      {"1 + + 2", 3},  // the first "+" lacks an operand when
                       // the second one arrives
      {"1 + * 2", 4},  // "*" binds more tightly, so the lack shows at the end
      {"1 + 2 + + 3", 5},
      {"()", 2},
      {"1 + ()", 4},
      {"(1 2)", 4},
      {"(1 +)", 4},
      {"(-3)", 4},  // the minus sign of a group is an
                    // operator without a left side
      {"(- 3) + 1", 4},
      {"x - (-3)", 6},
      {"1 (2)", 4},
      {"(1) (2)", 6},
      {"a == b == ", 4},
      {"* 1 + 2", 3},
  };
  for (const FailureCase& c : cases) {
    SCOPED_TRACE(c.text);
    std::vector<const Token*> order;
    const Expression expression = readExpression(c.text);
    EXPECT_EQ(postfixOrder(expression, order), c.position);
  }
}

std::vector<Token> ofKinds(std::initializer_list<int32_t> kinds) {
  std::vector<Token> tokens;
  for (const int32_t kind : kinds) tokens.push_back({{1, 0}, kind, 1, {}});
  return tokens;
}

struct KindsCase {
  const char* what;
  std::vector<Token> tokens;
  int position;
};

TEST(Postfix, RefusesWhatNoReaderMakes) {
  const KindsCase cases[] = {
      {"a group that is not opened", ofKinds({TOKEN_NUMBER, TOKEN_CLOSE, TOKEN_NUMBER}), 2},
      {"a group that is closed twice",
       ofKinds({TOKEN_OPEN, TOKEN_NUMBER, TOKEN_CLOSE, TOKEN_CLOSE}), 4},
      {"a group that is not closed", ofKinds({TOKEN_OPEN, TOKEN_NUMBER}), 2},
      {"an open group after all operands",
       ofKinds({TOKEN_NUMBER, OP_ADD, TOKEN_NUMBER, TOKEN_OPEN}), 4},
      {"an operator with one operand in an open group",
       ofKinds({TOKEN_NUMBER, TOKEN_OPEN, TOKEN_NUMBER, OP_ADD}), 4},
      {"an unknown operator", ofKinds({TOKEN_NUMBER, 22, TOKEN_NUMBER}), 2},
      {"a code below the operators", ofKinds({TOKEN_NUMBER, -1, TOKEN_NUMBER}), 2},
  };
  for (const KindsCase& c : cases) {
    SCOPED_TRACE(c.what);
    std::vector<const Token*> order;
    EXPECT_EQ(postfixOrder({c.tokens}, order), c.position);
  }
}

TEST(Postfix, DeepNestingNeedsNoRecursion) {
  constexpr size_t DEPTH = 200'000;
  std::vector<Token> tokens(DEPTH, {{1, 0}, TOKEN_OPEN, 0, {}});
  tokens.push_back({{1, 0}, TOKEN_NUMBER, 7, {}});
  tokens.insert(tokens.end(), DEPTH, {{1, 0}, TOKEN_CLOSE, 0, {}});
  std::vector<const Token*> order;
  EXPECT_EQ(postfixOrder({tokens}, order), 0);
  EXPECT_EQ(show(order), "7");
  tokens.pop_back();
  EXPECT_EQ(postfixOrder({tokens}, order), static_cast<int>(2 * DEPTH));
}

}  // namespace
