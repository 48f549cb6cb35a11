#include "check/proof/abstract_value.h"

#include <gtest/gtest.h>

#include <vector>

#include "deflang/expression/operators.h"

namespace {

// "a OPERATOR b".
CompiledExpression expressionOf(int32_t code, std::vector<Token>& tokens) {
  tokens.resize(3);
  tokens[0].kind = tokens[2].kind = TOKEN_VARIABLE;
  tokens[0].text = "a";
  tokens[1].kind = code;
  tokens[2].text = "b";
  CompiledExpression compiled{{tokens}, {}, {}};
  EXPECT_EQ(Program::compile(compiled.expression, compiled.variables, compiled.program), 0);
  compiled.sources.resize(compiled.variables.size());
  for (const char* const name : {"a", "b"}) {
    compiled.sources[*compiled.variables.find(name)].name = name;
  }
  return compiled;
}

// What the operator may give for two spans.
AbstractValue resultOf(const CompiledExpression& expression, const Span& a, const Span& b) {
  return evaluateAbstractly(expression, [&](const VariableSource& source) {
    AbstractValue value;
    const Span& span = source.name == "a" ? a : b;
    value.addNumbers(span.first, span.second);
    return value;
  });
}

std::vector<Span> smallSpans() {
  constexpr int32_t ENDS[] = {INT32_MIN, -9, -2, -1, 0, 1, 3, 6, 31, 33, INT32_MAX};
  std::vector<Span> spans;
  for (const int32_t low : ENDS) {
    for (const int32_t high : ENDS) {
      if (low <= high) spans.emplace_back(low, high);
    }
  }
  return spans;
}

std::vector<int32_t> someOf(const Span& span) {
  std::vector<int32_t> numbers;
  for (const int32_t number :
       {INT32_MIN, -9, -8, -2, -1, 0, 1, 2, 3, 4, 5, 6, 8, 30, 31, 32, 33, INT32_MAX}) {
    if (span.first <= number && number <= span.second) numbers.push_back(number);
  }
  return numbers;
}

// Every result of the engine is among those said.
TEST(AbstractValues, HoldWhatTheOperatorsGive) {
  const std::vector<Span> spans = smallSpans();
  for (int32_t code = OP_LOGICAL_OR; code < OP_CONTAINS; ++code) {
    std::vector<Token> tokens;
    const CompiledExpression expression = expressionOf(code, tokens);
    for (const Span& a : spans) {
      for (const Span& b : spans) {
        const AbstractValue value = resultOf(expression, a, b);
        for (const int32_t x : someOf(a)) {
          for (const int32_t y : someOf(b)) {
            const std::optional<int32_t> result = calculate(code, x, y);
            const bool isHeld =
                result ? value.mayBeNumber && value.low <= *result && *result <= value.high
                       : value.mayBeMissing;
            ASSERT_TRUE(isHeld) << x << " " << operatorText(code) << " " << y << " of " << a.first
                                << ".." << a.second << " and " << b.first << ".." << b.second;
          }
        }
      }
    }
  }
}

TEST(AbstractValues, AreNarrowForMasksAndShifts) {
  struct Case {
    int32_t code;
    Span a;
    Span b;
    Span result;
  };
  const Case cases[] = {
      {OP_BIT_AND, {0, 255}, {1, 1}, {0, 1}},
      {OP_BIT_AND, {-9, 9}, {3, 3}, {0, 3}},
      {OP_BIT_AND, {7, 7}, {INT32_MIN, INT32_MAX}, {0, 7}},
      {OP_BIT_OR, {4, 5}, {0, 9}, {4, 15}},
      {OP_BIT_XOR, {4, 5}, {0, 3}, {0, 7}},
      {OP_SHIFT_RIGHT, {0, 255}, {4, 4}, {0, 15}},
      {OP_SHIFT_RIGHT, {-8, 255}, {1, 2}, {-4, 127}},
      {OP_SHIFT_RIGHT, {5, 255}, {-1, 40}, {0, 255}},
      {OP_SHIFT_LEFT, {1, 3}, {0, 4}, {1, 48}},
      {OP_SHIFT_LEFT, {1, 3}, {30, 30}, {INT32_MIN, INT32_MAX}},  // wraps around
  };
  for (const Case& c : cases) {
    std::vector<Token> tokens;
    const AbstractValue value = resultOf(expressionOf(c.code, tokens), c.a, c.b);
    SCOPED_TRACE(testing::Message() << c.a.first << ".." << c.a.second << " "
                                    << operatorText(c.code) << " " << c.b.first);
    EXPECT_EQ(Span(value.low, value.high), c.result);
    EXPECT_FALSE(value.mayBeMissing);
  }
}

}  // namespace
