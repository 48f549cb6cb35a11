#include "deflang/expression/program.h"

#include <gtest/gtest.h>

#include <map>
#include <optional>

#include "base/value_limit.h"
#include "base/work.h"
#include "tests/support/allocations.h"
#include "tests/support/expressions.h"
#include "tests/support/names.h"

namespace {

using Bindings = std::map<std::string, std::string>;

// The situation looks at the texts of `bindings`.
Situation situationOf(const Variables& variables, const Bindings& bindings) {
  Situation situation(variables.size());
  for (const auto& [name, value] : bindings) {
    if (const auto slot = variables.find(name)) situation.bind(*slot, operandOf(value));
  }
  return situation;
}

// A number as it is printed, a text between quotes, nullopt for the invalid value.
std::optional<std::string> shown(const Value& value) {
  if (!value.valid()) return std::nullopt;
  return value.isNumber() ? value.asText() : "\"" + value.asText() + "\"";
}

std::optional<std::string> evaluateText(const std::string& text, const Bindings& bindings = {}) {
  Variables variables;
  const Program program = programOf(text, variables);
  const Situation situation = situationOf(variables, bindings);
  const Value value = program.evaluate(situation);
  EXPECT_EQ(program.isTrue(situation), value.isTrue()) << text;
  return shown(value);
}

struct Case {
  std::string text;
  std::optional<std::string> value;
};

void expectValues(std::initializer_list<Case> cases, const Bindings& bindings = {}) {
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_EQ(evaluateText(c.text, bindings), c.value);
  }
}

TEST(ExpressionOperators, DivideAndShiftWithoutTraps) {
  expectValues({
      {"7 / 2", "3"},
      {"7 / 0", std::nullopt},
      {"7 % 0", std::nullopt},
      {"-2147483648 / -1", "-2147483648"},
      {"-2147483648 % -1", "0"},
      {"-7 % 3", "-1"},
      {"1 << 40", "0"},
      {"-8 >> 40", "-1"},
      {"1 << -1", "0"},
      {"-8 >> -1", "-1"},
      {"8 >> -1", "0"},
      {"2147483647 + 1", "-2147483648"},
      {"65536 * 65536", "0"},
  });
}

TEST(ExpressionOperators, BindByTheirLevels) {
  expectValues({
      {"2 + 3 * 4", "14"},
      {"(2 + 3) * 4", "20"},
      {"10 - 4 - 3", "3"},  // from left to right
      {"10 - (4 - 3)", "9"},
      {"100 / 10 / 5", "2"},
      {"1 << 2 + 1", "8"},
      {"1 | 2 == 2", "1"},
      {"6 & 3 == 3", "0"},  // comparisons bind more tightly than bits
      {"1 || 0 && 0", "1"},
      {"\"12\" $ \"2\" * 5", "5"},
      {"0 - 5", "-5"},
      {"-3 + 5", "2"},
      {"7 - -3", "10"},
  });
}

TEST(ExpressionOperators, TakeStringsForTheirLeadingNumbers) {
  expectValues({
      {"\"12ab\" * 2", "24"},
      {"\"ab\" - 1", "-1"},  // no digits count as 0
      {"\"\" - 1", "-1"},
      {"\"0x10 lines\" / 2", "8"},
      {"2 ^ \"3x\"", "1"},
      {"\"1\" << \"4\"", "16"},
      {"\"-16\" >> 2", "-4"},
      {"\"7\" % \"4\"", "3"},
      {"\"6\" & \"3\"", "2"},
      {"\"4\" | 1", "5"},
      {"\"on\" && 1", "0"},
      {"\"1on\" && 1", "1"},
      {"\"on\" || 0", "0"},
      {"\"5\" || 0", "1"},
      {"1 / \"off\"", std::nullopt},
  });
}

TEST(ExpressionOperators, AddNumbersAndJoinTexts) {
  expectValues({
      {"1 + 2", "3"},
      {"\"1\" + 2", "\"12\""},
      {"1 + \"2\"", "\"12\""},
      {"\"1\" + \"2\"", "\"12\""},
      {"\"a\" + \"b\"", "\"ab\""},
      {"1 + 2 + \"p\"", "\"3p\""},
      {"\"p\" + 1 + 2", "\"p12\""},
      {"\"\" + \"\"", "\"\""},
      {"-7 + \"\"", "\"-7\""},
      {"0x10 + \"\"", "\"16\""},  // numbers are printed in decimal
      {"(\"a\" + \"b\") + (\"c\" + \"d\")", "\"abcd\""},
      {"(\"a\" + \"b\") + (\"cd\" + \"ef\")", "\"abcdef\""},
      {"(\"abc\" + \"d\") + (\"e\" + \"f\") + \"g\"", "\"abcdefg\""},
      {"\"a\" + (\"b\" + (\"c\" + (\"d\" + 5)))", "\"abcd5\""},
      {"(\"1\" + \"2\") * 2", "24"},
      {"(\"1\" + \"2\") == 12", "1"},
  });
}

TEST(ExpressionOperators, CompareNumbersAsNumbersAndAllElseAsTexts) {
  expectValues({
      {"10 == \"10\"", "1"},
      {"9 < \"10\"", "0"},  // the texts "9" and "10"
      {"9 < 10", "1"},
      {"\"9\" < \"10\"", "0"},
      {"0x10 == \"16\"", "1"},
      {"0x10 == \"0x10\"", "0"},
      {"\"auto\" == \"auto\"", "1"},
      {"\"auto\" != \"off\"", "1"},
      {"\"b\" >= \"a\"", "1"},
      {"\"a\" > 5", "1"},
      {"-1 <= \"-1\"", "1"},
      {"\"\" == 0", "0"},  // a string in quotes is never a number by itself
  });
}

TEST(ExpressionOperators, ContainsLooksAtTexts) {
  expectValues({
      {"\"1080i\" $ \"80\"", "1"},
      {"\"1080i\" $ 80", "1"},
      {"1080 $ \"08\"", "1"},
      {"1080 $ 80", "1"},
      {"1080 $ 81", "0"},
      {"80 $ 1080", "0"},
      {"\"abc\" $ \"\"", "1"},
      {"(\"a\" + \"b\") $ \"ab\"", "1"},
  });
}

TEST(ExpressionOperators, OneDefinedSideMayDecide) {
  expectValues({
      {"u || 5", "5"},  // the value itself, not 1
      {"5 || u", "5"},
      {"-3 || u", "-3"},
      {"u || \"5x\"", "5"},
      {"u || 0", std::nullopt},
      {"u || \"on\"", std::nullopt},  // no digits count as 0
      {"u && 0", "0"},
      {"0 && u", "0"},
      {"u && 1", std::nullopt},
      {"u && \"on\"", "0"},
      {"u | -1", "-1"},
      {"-1 | u", "-1"},
      {"u | 0", std::nullopt},
      {"u | 1", std::nullopt},
      {"u & 0", "0"},
      {"0 & u", "0"},
      {"u & -1", std::nullopt},
      {"u || v", std::nullopt},
      {"u && v", std::nullopt},
      {"u & v", std::nullopt},
      {"u | v", std::nullopt},
  });
}

TEST(ExpressionOperators, NoOtherOperatorTakesAnUndefinedVariable) {
  for (const std::string operation :
       {"==", "!=", "<", ">", "<=", ">=", "<<", ">>", "^", "+", "-", "*", "/", "%", "$"}) {
    SCOPED_TRACE(operation);
    EXPECT_EQ(evaluateText("u " + operation + " 0"), std::nullopt);
    EXPECT_EQ(evaluateText("0 " + operation + " u"), std::nullopt);
    EXPECT_EQ(evaluateText("\"\" " + operation + " u"), std::nullopt);
    EXPECT_EQ(evaluateText("u " + operation + " v"), std::nullopt);
  }
}

TEST(ExpressionOperators, AnInvalidResultEndsTheEvaluation) {
  expectValues({
      {"(1 / 0) || 5", std::nullopt},  // only an undefined variable is absorbed
      {"5 || (1 / 0)", std::nullopt},
      {"(1 % 0) && 0", std::nullopt},
      {"0 & (1 / 0)", std::nullopt},
      {"(u + 1) || 5", std::nullopt},
      {"(u && 1) || 5", std::nullopt},
      {"(u || 5) + 1", "6"},
      {"(u && 0) == 0", "1"},
  });
}

TEST(ExpressionVariables, AreWhatTheirTextsAre) {
  const Bindings bindings = {{"hex", "0x10"},  {"text", "12ab"}, {"empty", ""},     {"ten", "10"},
                             {"mode", "auto"}, {"gain[2]", "6"}, {"sw::this", "-4"}};
  expectValues(
      {
          {"hex", "16"},
          {"hex + 0", "16"},
          {"hex + \"\"", "\"16\""},
          {"hex == \"16\"", "1"},  // a number's text is decimal, not as it was bound
          {"hex $ \"x\"", "0"},
          {"text", "\"12ab\""},
          {"text * 2", "24"},
          {"text + 1", "\"12ab1\""},
          {"empty", "0"},  // all of the empty text converts
          {"empty == 0", "1"},
          {"empty == \"\"", "0"},
          {"empty + 5", "5"},
          {"ten == \"10\"", "1"},
          {"9 < ten", "1"},
          {"\"9\" < ten", "0"},
          {"mode == \"auto\"", "1"},
          {"mode $ \"ut\"", "1"},
          {"mode + ten", "\"auto10\""},
          {"ten + mode", "\"10auto\""},
          {"gain[2] * 2", "12"},
          {"sw::this * sw::this", "16"},
          {"unbound", std::nullopt},
          {"ten + unbound", std::nullopt},
      },
      bindings);
}

struct TruthCase {
  std::string text;
  bool isTrue;
};

TEST(ExpressionTruth, IsANumberOtherThanZeroOrAnyText) {
  const TruthCase cases[] = {
      {"1", true},      {"-1", true},           {"0", false},       {"\"0\"", true},
      {"\"\"", false},  {"\"a\"", true},        {"u", false},       {"1 / 0", false},
      {"u || 1", true}, {"\"\" + \"\"", false}, {"\"\" + 0", true},
  };
  for (const TruthCase& c : cases) {
    SCOPED_TRACE(c.text);
    Variables variables;
    const Program program = programOf(c.text, variables);
    EXPECT_EQ(program.isTrue(Situation(variables.size())), c.isTrue);
    EXPECT_EQ(program.evaluate(Situation(variables.size())).isTrue(), c.isTrue);
    EXPECT_EQ(program.isTrue(SituationView()), c.isTrue);
  }
}

TEST(Program, HasNoValueWhereThatIsTooLong) {
  const std::pair<size_t, bool> cases[] = {{MAX_VALUE_BYTES, true}, {MAX_VALUE_BYTES + 1, false}};
  for (const auto& [bytes, isValue] : cases) {
    SCOPED_TRACE(bytes);
    EXPECT_EQ(Program::constant(std::string(bytes, 'x')).evaluate(SituationView()).valid(),
              isValue);
  }
}

TEST(Program, CompileTellsTheTokenAtWhichItFails) {
  struct FailureCase {
    std::string text;
    int position;
  };
  const FailureCase cases[] = {{"", -1}, {"1 +", 2}, {"(-3)", 4}, {"a b", 2}, {"1 + + 2", 3}};
  for (const FailureCase& c : cases) {
    SCOPED_TRACE(c.text);
    Variables variables;
    Program program = Program::constant(1);
    EXPECT_EQ(Program::compile(readExpression(c.text), variables, program), c.position);
    EXPECT_TRUE(program.empty());
    EXPECT_EQ(variables.size(), 0U);  // what failed asks for no values
    EXPECT_EQ(shown(program.evaluate(SituationView())), std::nullopt);
    EXPECT_FALSE(program.isTrue(SituationView()));
  }
}

TEST(Program, IsCompiledWithAsManyAllocationsHoweverLongItIs) {
  const auto allocationsOf = [](const std::string& text) {
    const Expression expression = readExpression(text);
    Variables variables;
    Program program;
    const size_t before = Allocations::count;
    EXPECT_EQ(Program::compile(expression, variables, program), 0) << text;
    return Allocations::count - before;
  };
  std::string sum = "1 + 1";
  const size_t few = allocationsOf(sum);
  for (int i = 0; i < 100; ++i) sum += " + 1";
  EXPECT_EQ(allocationsOf(sum), few);
}

TEST(Program, CompileReplacesWhatWasThere) {
  Variables variables;
  Program program = programOf("\"old\" + a", variables);
  EXPECT_EQ(Program::compile(readExpression("2 + b"), variables, program), 0);
  EXPECT_EQ(namesOf(variables), (std::vector<std::string>{"a", "b"}));
  EXPECT_EQ(shown(program.evaluate(situationOf(variables, {{"b", "5"}}))), "7");
}

TEST(Program, VariablesShareTheSlotsOfTheirDefinition) {
  Variables variables;
  const Program first = programOf("a + b", variables);
  const Program second = programOf("b * c * b", variables);
  EXPECT_EQ(namesOf(variables), (std::vector<std::string>{"a", "b", "c"}));
  const Bindings bindings = {{"a", "1"}, {"b", "2"}, {"c", "3"}};
  const Situation situation = situationOf(variables, bindings);
  EXPECT_EQ(shown(first.evaluate(situation)), "3");
  EXPECT_EQ(shown(second.evaluate(situation)), "12");
}

TEST(Program, ConstantsNeedNoSituation) {
  EXPECT_EQ(shown(Program::constant(-5).evaluate(SituationView())), "-5");
  EXPECT_EQ(shown(Program::constant(std::string("12")).evaluate(SituationView())), "\"12\"");
  EXPECT_EQ(shown(Program::constant(std::string()).evaluate(SituationView())), "\"\"");
  for (const Value& value : {Value{OPERAND_NUMBER, 7, ""}, Value{OPERAND_STRING, 0, "7"}}) {
    EXPECT_EQ(shown(Program::constant(value).evaluate(SituationView())), shown(value));
  }
  EXPECT_FALSE(Program::constant(1).empty());
  EXPECT_FALSE(Program::constant(1).usesVariables());
}

TEST(Program, KnowsWhetherItUsesVariables) {
  Variables variables;
  EXPECT_FALSE(Program().usesVariables());
  EXPECT_FALSE(programOf("1 + \"a\"", variables).usesVariables());
  EXPECT_TRUE(programOf("1 + a", variables).usesVariables());
}

TEST(Program, TheEmptyOneHasNoValue) {
  const Program program;
  EXPECT_TRUE(program.empty());
  EXPECT_FALSE(program.evaluate(SituationView()).valid());
  EXPECT_FALSE(program.isTrue(SituationView()));
}

TEST(Program, MayBeEvaluatedAgainAndAgain) {
  Variables variables;
  const Program program = programOf("\"<\" + a + \">\"", variables);
  for (const std::string value : {"one", "two", "a text that is too long to be held in place"}) {
    EXPECT_EQ(program.evaluate(situationOf(variables, {{"a", value}})).text, "<" + value + ">");
  }
}

// 1 + (1 + (1 + ...)) with `depth` operands held at once.
std::string nested(int depth) {
  std::string text;
  for (int i = 1; i < depth; ++i) text += "1 + (";
  return text + "1" + std::string(static_cast<size_t>(depth - 1), ')');
}

TEST(Program, HoldsAnyNumberOfOperands) {
  for (const int depth : {1, 2, 15, 16, 17, 100, 20'000}) {
    SCOPED_TRACE(depth);
    EXPECT_EQ(evaluateText(nested(depth)), std::to_string(depth));
  }
}

TEST(Program, LongChainsOfTextsCostAboutTheirLength) {
  constexpr size_t LENGTH = 200'000;
  std::string left = "\"\"";
  std::string right;
  for (size_t i = 0; i < LENGTH; ++i) left += "+1";
  for (size_t i = 0; i < LENGTH; ++i) right += "1+(";
  right += "\"\"" + std::string(LENGTH, ')');
  const std::string expected = "\"" + std::string(LENGTH, '1') + "\"";
  EXPECT_EQ(evaluateText(left), expected);
  EXPECT_EQ(evaluateText(right), expected);
}

TEST(Program, NumbersAreEvaluatedWithoutAnAllocation) {
  Variables variables;
  const Program program =
      programOf("sw::this >= 0 && sw::this <= limit - 1 || 7 / (limit & 3) > 9 || u && 0 || 10 $ 1",
                variables);
  const Program deep = programOf(nested(16), variables);
  const Bindings bindings = {{"sw::this", "5"}, {"limit", "10"}};
  const Situation situation = situationOf(variables, bindings);
  const size_t before = Allocations::count;
  const bool isTrue = program.isTrue(situation);
  const Value value = deep.evaluate(situation);
  EXPECT_EQ(Allocations::count - before, 0U);
  EXPECT_TRUE(isTrue);
  EXPECT_EQ(value.number, 16);
}

TEST(Program, TextsAreComparedWithoutAnAllocation) {
  Variables variables;
  const Program program =
      programOf("mode == \"a text that is too long to be held in place\"", variables);
  const Bindings bindings = {{"mode", "a text that is too long to be held in place"}};
  const Situation situation = situationOf(variables, bindings);
  const size_t before = Allocations::count;
  const bool isTrue = program.isTrue(situation);
  EXPECT_EQ(Allocations::count - before, 0U);
  EXPECT_TRUE(isTrue);
}

TEST(Value, IsWrittenAsAParameterHoldsIt) {
  EXPECT_EQ((Value{OPERAND_NUMBER, -7, {}}).asText(), "-7");
  EXPECT_EQ((Value{OPERAND_STRING, 0, "auto"}).asText(), "auto");
}

// What evaluating `text` does to texts, in units of work. "long" holds 1000 times "x".
uint64_t textWork(const std::string& text) {
  Variables variables;
  const Program program = programOf(text, variables);
  const Bindings bindings = {{"long", std::string(1000, 'x')}, {"n", "5"}};
  const Situation situation = situationOf(variables, bindings);
  Work::begin(UINT64_MAX);
  static_cast<void>(program.isTrue(situation));
  return Work::done();
}

TEST(ProgramWork, CountsWhatIsDoneToTexts) {
  const std::pair<const char*, uint64_t> cases[] = {
      {"n + 1 < n * 2", 0},
      {"long", 0},
      {"undefined + long", 1000},  // what number it begins with
      {"undefined || long", 1000},
      {"long == long", 1000},
      {"long == \"xy\"", 2},
      {"long < n", 1},
      {"long $ \"y\"", 4000},
      {"\"y\" $ long", 4},
      {"long - 1", 1000},
      {"long + n", 1001},
      {"n + long", 1001},
      {"long + n + n + n", 1003},  // a text that was made is not copied again
      {"n + (n + (n + long))", 1003},
      {"long + (\"x\" + n)", 1002},
      {"(\"x\" + n) + (long + n)", 1005},  // of two that were made the shorter joins the longer
      {"(long + n) + (\"x\" + n)", 1005},
  };
  for (const auto& [text, units] : cases) EXPECT_EQ(textWork(text), units) << text;
}

TEST(Program, TakesTheSlotsOfOtherVariables) {
  for (const std::string text : {"b", "b + 1", "1 + b"}) {
    SCOPED_TRACE(text);
    Variables own;
    own.intern("a");
    Program program = programOf(text, own);
    Variables others;
    for (const char* name : {"x", "y", "z"}) others.intern(name);
    program.rebase(own, others);
    EXPECT_EQ(namesOf(others), (std::vector<std::string>{"x", "y", "z", "b"}));
    Situation situation(others.size());
    situation.bind(3, operandOf("7"));
    EXPECT_EQ(shown(program.evaluate(situation)), text == "b" ? "7" : "8");
  }
}

TEST(ProgramWork, OfStepsIsKnownBefore) {
  const std::pair<const char*, uint64_t> cases[] = {
      {"1", 7}, {"n", 7}, {"\"x\"", 7}, {"n + 1", 11}, {"(n + 1) * (n - 1)", 19}};
  for (const auto& [text, units] : cases) {
    Variables variables;
    EXPECT_EQ(programOf(text, variables).work(), units) << text;
  }
}

TEST(ProgramWork, EndsAnEvaluationWhereTheBudgetIsPassed) {
  Variables variables;
  const Program program = programOf("long $ \"y\"", variables);
  const Bindings bindings = {{"long", std::string(1000, 'x')}};
  const Situation situation = situationOf(variables, bindings);
  Work::begin(3999);
  EXPECT_THROW(static_cast<void>(program.evaluate(situation)), WorkExceeded);
  Work::begin(4000);
  EXPECT_EQ(shown(program.evaluate(situation)), "0");
  Work::begin(UINT64_MAX);
}

TEST(Program, HasNoValueLongerThanAValueMayBe) {
  const std::string longest(MAX_VALUE_BYTES, 'x');
  const Bindings bindings = {{"longest", longest}, {"shorter", longest.substr(1)}};
  struct LongCase {
    const char* text;
    std::optional<size_t> size;
  };
  const LongCase cases[] = {
      {"longest", MAX_VALUE_BYTES},
      {"shorter + 5", MAX_VALUE_BYTES},
      {"5 + shorter", MAX_VALUE_BYTES},
      {"longest + 5", std::nullopt},
      {"5 + longest", std::nullopt},
      {"longest + 5 == 5", std::nullopt},  // what has no value makes the whole have none
      {"longest + \"\"", MAX_VALUE_BYTES},
  };
  for (const LongCase& c : cases) {
    Variables variables;
    const Program program = programOf(c.text, variables);
    const Value value = program.evaluate(situationOf(variables, bindings));
    EXPECT_EQ(value.valid(), c.size.has_value()) << c.text;
    EXPECT_EQ(value.text.size(), c.size.value_or(0)) << c.text;
  }
}

}  // namespace
