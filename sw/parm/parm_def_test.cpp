#include "sw/parm/parm_def.h"

#include <gtest/gtest.h>

#include "base/work.h"
#include "sw/parm/present_bounds.h"
#include "tests/support/allocations.h"
#include "tests/support/definitions.h"
#include "tests/support/names.h"

namespace {

using Texts = TextSituation::Texts;

TEST(ParmDef, IsReadOnlyByModeAndConditions) {
  struct {
    AccessMode mode;
    std::vector<std::string> conditions;
    bool readOnly;
  } const cases[] = {
      {MODE_NEVER, {}, true},
      {MODE_NEVER, {"0"}, true},
      {MODE_WRITE_ONLY, {}, false},
      {MODE_WRITE_ONLY, {"1"}, false},
      {MODE_NORMAL, {}, false},
      {MODE_NORMAL, {"0"}, false},
      {MODE_NORMAL, {"on"}, true},
      {MODE_NORMAL, {"0", "on"}, true},  // any condition will do
      {MODE_NORMAL, {"on", "0"}, true},
      {MODE_NORMAL, {"on == 0"}, false},
      {MODE_NORMAL, {"other"}, false},  // undefined
      {MODE_ROSTRICT, {}, false},
      {MODE_ROSTRICT, {"0", "1"}, true},
      {MODE_ROSTRICT, {"0", "0"}, false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::to_string(c.mode) + testing::PrintToString(c.conditions));
    ParmText text = {.mode = c.mode, .readOnlyIf = c.conditions};
    text.common.validIf = {"on"};  // so that every row has the variable
    const ParmDef parm = makeParm(text);
    EXPECT_EQ(parm.isReadOnly(TextSituation(parm.variables(), {{"on", "1"}})), c.readOnly);
    EXPECT_EQ(parm.mode(), c.mode);
  }
}

// What the two checks say of a value, asked as of any definition.
std::pair<bool, bool> checks(const IndexDef& definition, const std::string& value) {
  const Situation situation(definition.variables().size());
  BoundsCheck check(definition, situation);
  return {definition.checkBase(value), definition.checkValue(value, check)};
}

TEST(ParmDef, ChecksAsAnIndexWithoutConstraints) {
  const ParmDef parm = makeParm(
      {.common = {.base = {"0..9"}, .ranges = {{"1", {"0..5"}}}, .translations = {{"x", "4"}}}});
  EXPECT_FALSE(parm.hasConstraints());
  EXPECT_EQ(checks(parm, "5"), std::pair(true, true));
  EXPECT_EQ(checks(parm, "x"), std::pair(true, true));
  EXPECT_EQ(checks(parm, "6"), std::pair(true, false));
  EXPECT_EQ(checks(parm, "10"), std::pair(false, false));
}

TEST(ParmDef, AcceptsEveryValueWithConstraintRules) {
  const ParmDef parm = makeParm(
      {.common = {.base = {"0..9"}, .ranges = {{"1", {"0..5"}}}}, .rules = {{"0", "0", "0"}}});
  EXPECT_TRUE(parm.hasConstraints());
  EXPECT_FALSE(parm.hasRunTimeRanges());
  for (const std::string value : {"5", "6", "10", "auto", ""}) {
    SCOPED_TRACE(value);
    EXPECT_EQ(checks(parm, value), std::pair(true, true));
  }
}

TEST(ParmDef, AcceptsEveryValueWithRunTimeRanges) {
  const ParmDef parm =
      makeParm({.common = {.base = {"0..9"}, .ranges = {{"0", {"0..5"}}, {"0", {"(a)"}}}}});
  EXPECT_TRUE(parm.hasConstraints());
  EXPECT_TRUE(parm.hasRunTimeRanges());
  EXPECT_EQ(checks(parm, "10"), std::pair(true, true));
}

TEST(ParmDef, IsNotConstrainedByDocumentedRanges) {
  const ParmDef parm = makeParm({.common = {.base = {"0..9"}}, .documented = {{"1", {"(a)"}}}});
  EXPECT_FALSE(parm.hasConstraints());
  EXPECT_EQ(checks(parm, "10"), std::pair(false, false));
}

struct DefaultCase {
  Texts situation;
  int result;
  std::string value;
};

TEST(DefaultValue, IsTheFirstThatApplies) {
  const ParmDef parm = makeParm(
      {.defaults = {{"a", "first"}, {"b", "7 / zero"}, {"b", "\"text\" + b"}, {"c", "\"\""}},
       .fallback = "none"});
  const DefaultCase cases[] = {
      {{}, 1, "none"},
      {{{"a", "0"}, {"b", "0"}, {"c", "0"}}, 1, "none"},
      {{{"a", "1"}, {"b", "1"}, {"first", "50"}}, 0, "50"},
      {{{"a", "1"}, {"first", "0x10"}}, 0, "16"},  // numbers are written in decimal
      {{{"a", "1"}, {"first", "-010"}}, 0, "-8"},
      {{{"a", "1"}, {"first", "1080i/50"}}, 0, "1080i/50"},
      {{{"a", "1"}, {"b", "2"}, {"first", "1"}, {"zero", "0"}}, 0, "1"},
      {{{"b", "2"}, {"zero", "0"}}, 0, "text2"},  // the division has no value
      {{{"b", "2"}, {"zero", "2"}}, 0, "3"},
      {{{"a", "1"}, {"c", "1"}}, 0, ""},  // `first` is undefined; the empty text is a value
      {{{"a", "1"}}, 1, "none"},
  };
  for (const DefaultCase& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.situation));
    std::string value = "before";
    EXPECT_EQ(parm.defaultValue(value, TextSituation(parm.variables(), c.situation)), c.result);
    EXPECT_EQ(value, c.value);
  }
}

TEST(DefaultValue, IsEmptyWithoutAnyDefault) {
  std::string value = "before";
  EXPECT_EQ(makeParm({}).defaultValue(value, Situation(0)), 1);
  EXPECT_EQ(value, "");
}

TEST(DefaultValue, SeesTheIndexValuesUnchecked) {
  // Both indices are never valid and take no value; a default does not ask.
  const IndexDef row = makeIndex({.name = "row", .validIf = {"0"}, .base = {"0"}});
  const IndexDef column = makeIndex({.name = "column", .validIf = {"0"}, .base = {"0"}});
  const ParmDef parm =
      makeParm({.indices = {&row, &column},
                .defaults = {{"row == 5 && column == \"x\"", "row + column"}, {"row", "row * 2"}},
                .fallback = "none"});
  struct {
    IndexTuple indices;
    int result;
    std::string value;
  } const cases[] = {
      {{"5", "x"}, 0, "5x"},
      {{"5", "y"}, 0, "10"},
      {{"0", "x"}, 1, "none"},
      {{"5"}, 0, "10"},            // too few: the rest stays unbound
      {{"5", "x", "7"}, 0, "5x"},  // too many: the rest is ignored
      {{}, 1, "none"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.indices));
    std::string value;
    Situation situation(parm.variables().size());
    parm.bindIndices(situation, c.indices);
    EXPECT_EQ(parm.defaultValue(value, situation), c.result);
    EXPECT_EQ(value, c.value);
  }
}

TEST(DefaultValue, CostsEachDefaultThatIsAsked) {
  const ParmDef parm = makeParm({.defaults = {{"a", "7"}, {"b", "1 + 2"}, {"1", "9"}}});
  const std::pair<TextSituation::Texts, uint64_t> cases[] = {
      {{{"a", "1"}, {"b", "1"}}, 14},
      {{{"a", "0"}, {"b", "1"}}, 14 + 18},
      {{{"a", "0"}, {"b", "0"}}, 14 + 18 + 14},
  };
  for (const auto& [texts, units] : cases) {
    Work::begin();
    std::string value;
    EXPECT_EQ(parm.defaultValue(value, TextSituation(parm.variables(), texts)), 0);
    EXPECT_EQ(Work::done(), units) << value;
  }
}

std::string rangeText(const BoundsParm& bounds) {
  std::string text;
  for (const Span& span : bounds.integers().spans()) {
    text += "[" + std::to_string(span.first) + ", " + std::to_string(span.second) + "]";
  }
  for (const std::string& allowed : bounds.strings().texts()) text += '"' + allowed + '"';
  return text;
}

struct RangeCase {
  Texts situation;
  int result;
  std::string range;
};

void expectRanges(const ParmDef& parm, const std::vector<RangeCase>& cases) {
  for (const RangeCase& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.situation));
    BoundsParm range;
    EXPECT_EQ(parm.range(range, TextSituation(parm.variables(), c.situation)), c.result);
    EXPECT_EQ(rangeText(range), c.range);
  }
}

TEST(Range, IsTheFirstThatApplies) {
  const ParmDef parm =
      makeParm({.common = {.base = {"0..9", "auto"}, .ranges = {{"c", {"20..29"}}, {"d", {"30"}}}},
                .documented = {{"a", {"100", "x"}}, {"b", {"(lo)..(lo + 5)", "y"}}}});
  expectRanges(parm, {
                         {{}, 0, "[0, 9]\"auto\""},
                         {{{"d", "1"}}, 0, "[30, 30]"},
                         {{{"c", "1"}, {"d", "1"}}, 0, "[20, 29]"},
                         {{{"b", "1"}, {"c", "1"}, {"lo", "3"}}, 0, "[3, 8]\"y\""},
                         {{{"a", "1"}, {"b", "1"}}, 0, "[100, 100]\"x\""},
                         {{{"b", "1"}, {"c", "1"}}, -2, ""},
                     });
}

TEST(Range, TellsWhyARunTimeRangeHasNoValue) {
  const ParmDef parm = makeParm({.common = {.ranges = {{"1", {"(lo)..(hi)"}}}}});
  expectRanges(parm, {
                         {{{"lo", "2"}, {"hi", "5"}}, 0, "[2, 5]"},
                         {{{"lo", "5"}, {"hi", "5"}}, 0, "[5, 5]"},
                         {{{"hi", "5"}}, -2, ""},
                         {{{"lo", "auto"}, {"hi", "5"}}, -3, ""},
                         {{{"lo", "2"}}, -4, ""},
                         {{{"lo", "2"}, {"hi", "auto"}}, -4, ""},
                         {{{"lo", "6"}, {"hi", "5"}}, -5, ""},
                     });
}

TEST(Range, IsEmptyWithoutBounds) { expectRanges(makeParm({}), {{{}, 0, ""}}); }

TEST(ParmDef, UsesTheNamesOfItsOwnExpressions) {
  const IndexDef row = makeIndex({.name = "row", .validIf = {"rows"}, .ranges = {{"m", {"(n)"}}}});
  const IndexDef column = makeIndex({.name = "column", .ranges = {{"row == 1", {"0"}}}});
  const ParmDef parm = makeParm({.common = {.validIf = {"mode", "row"}},
                                 .indices = {&row, &column},
                                 .rules = {{"1", "sw::this", "mode"}}});
  EXPECT_EQ(parm.usedNames(), 3U);
  // The index "column" is bound for each instance, but nothing of the parameter asks for it. What
  // the indices name stays with them.
  EXPECT_EQ(namesOf(parm.variables()),
            (std::vector<std::string>{"mode", "row", "sw::this", "column"}));
}

TEST(ParmDef, KnowsWhatItsEvaluationCosts) {
  const IndexDef row = makeIndex({.name = "row", .base = {"ab", "abcd"}});
  struct {
    const char* subject;
    ParmText parm;
    uint64_t units;
  } const cases[] = {
      {"an instance", {}, 300},
      {"a condition, and its name", {.common = {.validIf = {"a"}}}, 300 + 7 + 20},
      {"one for writing", {.readOnlyIf = {"a"}}, 300 + 7 + 20},
      {"a range", {.common = {.ranges = {{"a", {"0..9"}}}}}, 300 + 10 + 7 + 20},
      {"a run-time range",
       {.common = {.ranges = {{"1", {"(a)", "0..(a)"}}}}},
       300 + 20 + 10 + 7 + 57 + 64},
      {"index values", {.indices = {&row, &row}}, 300 + 2 * uint64_t{200 + 16}},
      // A level may be walked twice, and then once more with the correction.
      {"a rule",
       {.rules = {{"a == 1", "sw::this + a < 3", "3"}}},
       300 + 40 + 2 * uint64_t{11 + 15} + 7},
      {"rules", {.rules = {{"1", "1", "1"}, {"1", "1", "1"}}}, 300 + 2 * uint64_t{28 + 7}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.subject);
    EXPECT_EQ(makeParm(c.parm).evaluationWork(), c.units);
  }
}

TEST(CommittedValues, OfAParameterWithoutIndices) {
  ParmDef parm = makeParm({});
  EXPECT_EQ(parm.committedText({}), "");
  parm.store({}, "0x7");
  ASSERT_NE(parm.committed({}), nullptr);
  EXPECT_EQ(parm.committedText({}), "0x7");
  EXPECT_EQ(parm.committed({})->value.operand().number, 7);
  parm.store({}, "auto");
  EXPECT_EQ(parm.committedText({}), "auto");
  EXPECT_EQ(parm.committed({"1"}), nullptr);
}

TEST(CommittedValues, AreOneForEachTuple) {
  const IndexDef row = makeIndex({.name = "row"});
  const IndexDef column = makeIndex({.name = "column"});
  ParmDef parm = makeParm({.indices = {&row, &column}});
  EXPECT_EQ(parm.committed({"1", "2"}), nullptr);
  EXPECT_EQ(parm.committedText({"1", "2"}), "");
  parm.store({"1", "2"}, "a");
  parm.store({"2", "1"}, "b");
  parm.store({"1", "2"}, "c");
  EXPECT_EQ(parm.committedText({"1", "2"}), "c");
  EXPECT_EQ(parm.committedText({"2", "1"}), "b");
  for (const IndexTuple& other : {IndexTuple{"1"}, {}, {"12"}, {"1", "2", ""}, {"0x1", "2"}}) {
    EXPECT_EQ(parm.committed(other), nullptr) << testing::PrintToString(other);
  }
}

TEST(CommittedValues, AreFoundByTheNumberOfTheInstance) {
  const IndexDef row = makeIndex({.name = "row"});
  ParmDef parm = makeParm({.indices = {&row}});
  EXPECT_EQ(parm.committed({"5"}, 1), nullptr);  // never stored; the search is not over
  parm.store({"5"}, "a");
  const CommittedValue* const value = parm.committed({"5"});
  EXPECT_EQ(parm.committed({"5"}, 1), value);
  EXPECT_EQ(parm.committed({"4"}, 0), nullptr);
  for (int i = 0; i < 1000; ++i) parm.store({std::to_string(i)}, "b");
  EXPECT_EQ(parm.committed({"5"}, 1), value);
  EXPECT_EQ(value->value.text(), "b");
  EXPECT_EQ(parm.committed({"999"}, 999), parm.committed({"999"}));
  const std::string longText(100, 'x');
  parm.store({longText}, "c");
  const IndexTuple longIndices = {longText};
  CommittedValue* const known = parm.committed(longIndices, 2);
  const size_t allocations = Allocations::count;
  EXPECT_EQ(parm.committed(longIndices, 2), known);
  EXPECT_EQ(Allocations::count, allocations);  // the name was not put together
  ParmDef plain = makeParm({});
  EXPECT_EQ(plain.committed({}, 0), plain.committed({}));
}

TEST(CommittedValues, KeepWhetherTheyWereAnnounced) {
  const IndexDef row = makeIndex({.name = "row"});
  ParmDef parm = makeParm({.indices = {&row}});
  parm.store({"1"}, "a");
  EXPECT_FALSE(parm.committed({"1"})->announced);
  parm.stored({"1"}).announced = true;
  EXPECT_TRUE(parm.committed({"1"})->announced);
  parm.store({"1"}, "b");
  EXPECT_TRUE(parm.committed({"1"})->announced);
  parm.store({"2"}, "b");
  EXPECT_FALSE(parm.committed({"2"})->announced);
}

}  // namespace
