#include "check/constant_choices.h"

#include <gtest/gtest.h>

namespace {

TEST(ConstantChoices, TakesNamesWithTheirValues) {
  ConstantChoices choices;
  for (const char* const definition : {"MODEL=basic,pro", "TITLE=", "FORMULA=a=b", "LIST=,x"}) {
    EXPECT_EQ(addConstantChoice(definition, choices), "") << definition;
  }
  const ConstantChoices expected = {{"MODEL", {"basic", "pro"}},
                                    {"TITLE", {""}},
                                    {"FORMULA", {"a=b"}},  // the first "=" ends the name
                                    {"LIST", {"", "x"}}};
  EXPECT_EQ(choices, expected);
}

TEST(ConstantChoices, RefusesWhatIsNoChoice) {
  const struct {
    const char* definition;
    const char* wrong;
  } cases[] = {
      {"MODEL", "a value is missing; write NAME=VALUE"},
      {"", "a value is missing; write NAME=VALUE"},
      {"=pro", "a name is missing; write NAME=VALUE"},
      {"GIVEN=2",
       "the constant \"GIVEN\" is given twice; several values are written NAME=VALUE,VALUE"},
      {"MODEL=a,b,a", "the constant \"MODEL\" has the value \"a\" twice"},
      {"MODEL=,", "the constant \"MODEL\" has the value \"\" twice"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.definition);
    ConstantChoices choices = {{"GIVEN", {"1"}}};
    EXPECT_EQ(addConstantChoice(c.definition, choices), c.wrong);
    EXPECT_EQ(choices.size(), 1U);
  }
}

TEST(ConstantChoices, TakesTheLinesOfAFile) {
  ConstantChoices choices;
  EXPECT_EQ(
      addConstantChoices("product.constants",
                         "# All models.\n\n  MODEL=basic,pro\r\n\t# none\nCHANNELS=1", choices),
      "");
  const ConstantChoices expected = {{"MODEL", {"basic", "pro"}}, {"CHANNELS", {"1"}}};
  EXPECT_EQ(choices, expected);
  EXPECT_EQ(addConstantChoices("more", "# again\nMODEL=pro\n", choices),
            "more:2: the constant \"MODEL\" is given twice; several values are written "
            "NAME=VALUE,VALUE");
  EXPECT_EQ(addConstantChoices("more", "A=1\nB\nC\n", choices),
            "more:2: a value is missing; write NAME=VALUE");
}

TEST(ConstantChoices, LimitsTheVariants) {
  const auto choicesOf = [](std::initializer_list<size_t> counts) {
    ConstantChoices choices;
    for (const size_t count : counts) choices.push_back({"C", std::vector<std::string>(count)});
    return choices;
  };
  EXPECT_EQ(tooManyVariants({}), "");
  EXPECT_EQ(tooManyVariants(choicesOf({64, 64})), "");
  const char* const wrong =
      "the constants have more than 4096 combinations; check some of their values at a time";
  EXPECT_EQ(tooManyVariants(choicesOf({4097})), wrong);
  EXPECT_EQ(tooManyVariants(choicesOf({2, 2049})), wrong);
  // The product would be 0 in 64 bits.
  EXPECT_EQ(tooManyVariants(choicesOf({2048, 2048, 2048, 2048, 2048, 2048})), wrong);
}

}  // namespace
