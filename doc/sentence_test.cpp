#include "doc/sentence.h"

#include <gtest/gtest.h>

#include "srcs/vid_std_figures.h"
#include "tests/support/expressions.h"

namespace {

Sentence sentenceOf(const std::string& expression, bool isCondition) {
  Variables variables;
  const Program program = programOf(expression, variables);
  return isCondition ? conditionSentence(program, variables) : valueSentence(program, variables);
}

TEST(Sentence, OfAConditionSaysWhenItIsTrue) {
  const struct {
    const char* expression;
    const char* text;
  } cases[] = {
      {"mode == \"auto\"", "mode is “auto”"},
      {"mode == \"auto\" && level > 3", "mode is “auto” and level is greater than 3"},
      {"a != 1 || b <= 2", "a is not 1 or b is at most 2"},
      {"a < 1 && b >= 2 && c", "a is less than 1 and b is at least 2 and c is not 0"},
      {"a == 1 || b == 1 && c == 1", "a is 1 or (b is 1 and c is 1)"},
      {"(a == 1 || b == 1) && c == 1", "(a is 1 or b is 1) and c is 1"},
      {"standard $ \"625i\"", "standard contains “625i”"},
      {"(state & 3) == 1", "state bit-and 3 is 1"},
      {"state & 3 == 1", "state bit-and (1 if 3 is 1, else 0) is not 0"},
      {"(a == 2) == 0", "(a is 2) is false"},
      {"(a == 2) != 0", "(a is 2) is true"},
      {"(a || b) == 1", "(1 if a is not 0 or b is not 0, else 0) is 1"},
      {"gain[1] == gain[2]", "gain[1] is gain[2]"},
      {"vidStd::mode::fr", "mode’s frame rate is not 0"},
      {"vidStd::in[1]::f1 != 0", "in[1]’s line of F = 1 is not 0"},
      {"a && 0", "a is not 0 and never"},
      {"1 == 1", ""},
      {"0", "never"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(plainText(sentenceOf(c.expression, true)), c.text) << c.expression;
  }
}

TEST(Sentence, OfAValueHasNoMoreParenthesesThanItNeeds) {
  const struct {
    const char* expression;
    const char* text;
  } cases[] = {
      {"7", "7"},
      {"-7", "-7"},
      {"\"off\"", "“off”"},
      {"vidStd::mode::spal - 1", "mode’s active samples − 1"},
      {"a - (b - c)", "a − (b − c)"},
      {"a - b - c", "a − b − c"},
      {"(a + b) * c / 2", "(a + b) × c ÷ 2"},
      {"a + b * c % 2", "a + b × c modulo 2"},
      {"2 + 6 * (model == \"pro\")", "2 + 6 × (1 if model is “pro”, else 0)"},
      {"a << 1 | b >> 2 ^ 3", "a shifted left by 1 bit-or b shifted right by 2 bit-xor 3"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(plainText(sentenceOf(c.expression, false)), c.text) << c.expression;
  }
}

TEST(Sentence, HasNamesAndTextsAsPartsOfTheirOwn) {
  const Sentence expected = {
      {PART_OF_NAME, "mode[1]"}, {PART_OF_WORDS, " is "}, {PART_OF_TEXT, "<b>"}};
  EXPECT_EQ(sentenceOf("mode[1] == \"<b>\"", true), expected);
  EXPECT_EQ(baseNameOf("mode[1][red]"), "mode");
  EXPECT_EQ(baseNameOf("mode"), "mode");
}

TEST(Sentence, HasWordsForEachFigure) {
  for (const vidFigure_t& figure : vidFigures()) {
    const std::string name = "vidStd::mode::" + std::string(figure.name);
    EXPECT_NE(plainText(sentenceOf(name, false)), "mode’s " + std::string(figure.name));
  }
}

TEST(Sentence, MayBeAsDeepAsItIsLong) {
  constexpr size_t DEPTH = 100000;
  std::string expression;
  for (size_t i = 0; i < DEPTH; ++i) expression += "a - (";
  expression += "b" + std::string(DEPTH, ')');
  std::string text;
  for (size_t i = 1; i < DEPTH; ++i) text += "a − (";
  text += "a − b" + std::string(DEPTH - 1, ')');
  EXPECT_EQ(plainText(sentenceOf(expression, false)), text);
}

}  // namespace
