#include "deflang/expression/expression_text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <random>

#include "deflang/expression/operators.h"
#include "tests/support/expressions.h"

namespace {

std::string textOf(const std::string& expression) {
  Variables variables;
  const Program program = programOf(expression, variables);
  return expressionText(program, variables);
}

TEST(ExpressionText, IsWhatAPersonWouldWrite) {
  const struct {
    const char* expression;
    const char* text;
  } cases[] = {
      {"7", "7"},
      {"-7", "-7"},
      {"0x10", "16"},
      {"gain[1]", "gain[1]"},
      {"\"auto\"", "\"auto\""},
      {"(level>(3)&&mode==\"auto\")", "level > 3 && mode == \"auto\""},
      {"a+b*c", "a + b * c"},
      {"(a+b)*c", "(a + b) * c"},
      {"a-(b-c)", "a - (b - c)"},
      {"(a-b)-c", "a - b - c"},
      {"a - -5", "a - -5"},
      {"mask&8==0", "mask & 8 == 0"},
      {"(mask&8)==0", "(mask & 8) == 0"},
      {"standard::spal/2", "standard::spal / 2"},
      {"a||b&&c", "a || b && c"},
      {"(a||b)&&c", "(a || b) && c"},
  };
  for (const auto& c : cases) EXPECT_EQ(textOf(c.expression), c.text) << c.expression;
}

TEST(ExpressionText, OfNoProgramIsEmpty) { EXPECT_EQ(expressionText(Program(), Variables()), ""); }

std::string randomExpression(std::mt19937& random, int depth) {
  const auto below = [&](size_t end) { return random() % end; };
  if (depth == 0 || below(3) == 0) {
    const char* const operands[] = {"a", "b[1]", "7", "-7", "\"x y\"", "0", "-2147483648"};
    return operands[below(std::size(operands))];
  }
  std::string op;
  while (op.empty()) op = operatorText(static_cast<int32_t>(below(30)));
  const auto part = [&] {
    std::string text = randomExpression(random, depth - 1);
    // Behind a parenthesis a minus sign makes no number negative.
    return below(2) == 0 && text.front() != '-' ? "(" + text + ")" : text;
  };
  std::string left = part();
  return left + " " + op + " " + part();
}

TEST(ExpressionText, CompilesToTheSameProgram) {
  std::mt19937 random(1);
  for (int i = 0; i < 5000; ++i) {
    const std::string expression = randomExpression(random, 4);
    Variables variables;
    const Program program = programOf(expression, variables);
    const std::string text = expressionText(program, variables);
    const Program again = programOf(text, variables);
    const auto same = [&](const Program::Step& a, const Program::Step& b) {
      return a.kind == b.kind && a.value == b.value;
    };
    EXPECT_TRUE(std::ranges::equal(program.steps(), again.steps(), same)) << expression << text;
    EXPECT_TRUE(std::ranges::equal(program.texts(), again.texts())) << expression << text;
    ASSERT_FALSE(HasFailure());
  }
}

}  // namespace
