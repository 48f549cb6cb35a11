#include "sw/parm/index_def.h"

#include <gtest/gtest.h>

#include "base/value_limit.h"
#include "sw/parm/present_bounds.h"
#include "tests/support/definitions.h"

namespace {

using Texts = TextSituation::Texts;

struct ConditionCase {
  std::vector<std::string> conditions;
  Texts situation;
  bool valid;
};

TEST(IndexDef, IsAvailableWhileEveryConditionIsTrue) {
  const ConditionCase cases[] = {
      {{}, {}, true},  // without conditions in every situation
      {{"a"}, {{"a", "1"}}, true},
      {{"a"}, {{"a", "0"}}, false},
      {{"a"}, {{"a", ""}}, false},    // the empty text is the number 0
      {{"a"}, {{"a", "off"}}, true},  // any other text is true
      {{"a == 1"}, {}, false},        // a is undefined
      {{"a || 1"}, {}, true},         // the defined side decides
      {{"a", "b"}, {{"a", "1"}, {"b", "1"}}, true},
      {{"a", "b"}, {{"a", "0"}, {"b", "1"}}, false},
      {{"a", "b"}, {{"a", "1"}, {"b", "0"}}, false},
      {{"a", "b"}, {{"a", "1"}}, false},
  };
  for (const ConditionCase& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.conditions) + testing::PrintToString(c.situation));
    const IndexDef index = makeIndex({.validIf = c.conditions});
    EXPECT_EQ(index.isAvailable(TextSituation(index.variables(), c.situation)), c.valid);
  }
}

TEST(IndexDef, TranslatesAValueThatIsASource) {
  const IndexDef index =
      makeIndex({.translations = {{"a", "b"}, {"b", "c"}, {"c", "d"}, {"", "a"}}});
  struct {
    std::string value, once, twice;
  } const cases[] = {
      {"a", "b", "c"},  // a target that is a source is followed once more, no further
      {"b", "c", "d"}, {"c", "d", "d"}, {"", "a", "b"},
      {"d", "d", "d"}, {"A", "A", "A"}, {"a ", "a ", "a "},  // only the whole text counts
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.value);
    std::string once = c.value;
    index.translate(once);
    EXPECT_EQ(once, c.once);
    std::string twice = c.value;
    index.translateTwice(twice);
    EXPECT_EQ(twice, c.twice);
  }
}

TEST(IndexDef, ChecksTheBaseOfTheTranslatedValue) {
  const IndexDef index = makeIndex({.base = {"0..9", "auto"},
                                    .ranges = {{"1", {"4..5"}}},
                                    .translations = {{"ten", "9"}, {"x", "ten"}, {"5", "50"}}});
  struct {
    std::string value;
    bool accepted;
  } const cases[] = {
      {"0", true},    {"9", true},    {"-1", false}, {"10", false}, {"0x9", true},
      {"auto", true}, {"off", false}, {"", false},   {"ten", true},  // 9
      {"x", false},  // "ten": a target is translated no further here
      {"5", false},  // 50
      {"7", true},   // conditional bounds are not asked
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.value);
    EXPECT_EQ(index.checkBase(c.value), c.accepted);
  }
}

TEST(IndexDef, AcceptsEveryBaseValueWithoutBaseBounds) {
  const IndexDef index = makeIndex({});
  const std::string longest(MAX_VALUE_BYTES, 'x');
  EXPECT_TRUE(index.checkBase(longest));
  EXPECT_FALSE(index.checkBase(longest + "x"));  // no value at all
  for (const std::string value : {"", "7", "auto"}) {
    SCOPED_TRACE(value);
    EXPECT_TRUE(index.checkBase(value));
    BoundsCheck check(index, SituationView());
    EXPECT_TRUE(index.checkValue(value, check));
  }
}

// A value held against the bounds of a definition in a situation.
struct WalkCase {
  std::string value;
  Texts situation;
  bool accepted;
  std::string corrected;
};

void expectWalk(const IndexDef& index, const WalkCase& c) {
  SCOPED_TRACE('"' + c.value + "\" in " + testing::PrintToString(c.situation));
  const TextSituation situation(index.variables(), c.situation);
  std::string value = c.value;
  EXPECT_EQ(correctValue(index, value, situation), c.accepted);
  EXPECT_EQ(value, c.corrected);
  BoundsCheck check(index, situation);
  EXPECT_EQ(index.checkValue(c.value, check), c.accepted) << "without correction";
}

TEST(FullCheck, CorrectsByTheBaseBoundsAlone) {
  const IndexDef index =
      makeIndex({.base = {"0..9", "auto"}, .translations = {{"a", "b"}, {"b", "7"}}});
  const WalkCase cases[] = {
      {"5", {}, true, "5"},   {"0x5", {}, true, "0x5"},   {"-1", {}, false, "0"},
      {"10", {}, false, "9"}, {"off", {}, false, "auto"}, {"", {}, false, "auto"},
      {"b", {}, true, "7"},   {"a", {}, true, "7"},  // translated twice
  };
  for (const WalkCase& c : cases) expectWalk(index, c);
}

TEST(FullCheck, WalksTheConditionalBounds) {
  const IndexDef index =
      makeIndex({.ranges = {{"a", {"0..9"}}, {"b", {"20..29", "auto"}}, {"c", {"25..35"}}}});
  const Texts none = {{"a", "0"}, {"b", "0"}, {"c", "0"}};
  const Texts first = {{"a", "1"}, {"b", "0"}, {"c", "0"}};
  const Texts later = {{"a", "0"}, {"b", "1"}, {"c", "1"}};
  const Texts all = {{"a", "1"}, {"b", "1"}, {"c", "1"}};
  const WalkCase cases[] = {
      {"5", none, false, "5"},  // refused by all, and nothing corrects it
      {"99", none, false, "99"},     {"5", {}, false, "5"},  // an undefined condition is not true
      {"5", first, true, "5"},       {"25", first, false, "9"},   {"auto", first, false, "0"},
      {"5", later, false, "20"},  // the first applicable one corrects
      {"off", later, false, "auto"}, {"35", later, true, "35"},  // a later one accepts
      {"36", later, false, "29"},    {"9", all, true, "9"},       {"20", all, true, "20"},
      {"35", all, true, "35"},       {"auto", all, true, "auto"}, {"15", all, false, "9"},
  };
  for (const WalkCase& c : cases) expectWalk(index, c);
}

TEST(FullCheck, RefusesWhatTheBaseBoundsRefused) {
  const IndexDef index =
      makeIndex({.base = {"0..9"}, .ranges = {{"1", {"5..20"}}, {"a", {"0..2"}}}});
  const WalkCase cases[] = {
      {"7", {}, true, "7"},
      {"15", {}, false, "9"},  // the conditional bounds see 9 and accept it
      {"3", {}, false, "5"},
      {"-3", {}, false, "5"},            // corrected by both, one after the other
      {"-3", {{"a", "1"}}, false, "0"},  // a later one accepts what the base bounds made of it
      {"2", {{"a", "1"}}, true, "2"},
  };
  for (const WalkCase& c : cases) expectWalk(index, c);
}

TEST(FullCheck, TakesARunTimeRangeAsItIsInTheSituation) {
  const IndexDef index =
      makeIndex({.base = {"0..9"}, .ranges = {{"a", {"(lo)..(hi)"}}, {"b", {"1..2"}}}});
  const WalkCase cases[] = {
      {"3", {{"a", "1"}, {"lo", "3"}, {"hi", "5"}}, true, "3"},
      {"5", {{"a", "1"}, {"lo", "3"}, {"hi", "5"}}, true, "5"},
      {"2", {{"a", "1"}, {"lo", "3"}, {"hi", "5"}}, false, "3"},
      {"6", {{"a", "1"}, {"lo", "3"}, {"hi", "5"}}, false, "5"},
      {"2", {{"a", "1"}, {"b", "1"}, {"lo", "3"}, {"hi", "5"}}, true, "2"},
      {"3", {{"a", "0"}, {"lo", "3"}, {"hi", "5"}}, false, "3"},  // nothing applies
      // A range that has no value here accepts everything that the base bounds accept.
      {"7", {{"a", "1"}, {"lo", "3"}}, true, "7"},
      {"7", {{"a", "1"}, {"b", "1"}, {"hi", "5"}}, true, "7"},
      {"7", {{"a", "1"}, {"lo", "5"}, {"hi", "3"}}, true, "7"},  // upside down
      {"12", {{"a", "1"}, {"lo", "3"}}, false, "9"},
  };
  for (const WalkCase& c : cases) expectWalk(index, c);
}

TEST(IndexDef, IsPlainWhileNothingDependsOnTheSituation) {
  EXPECT_TRUE(makeIndex({}).isPlain());
  EXPECT_TRUE(makeIndex({.base = {"0..9", "auto"}}).isPlain());
  EXPECT_FALSE(makeIndex({.validIf = {"1"}}).isPlain());
  EXPECT_FALSE(makeIndex({.ranges = {{"1", {"0..9"}}}}).isPlain());
  EXPECT_FALSE(makeIndex({.translations = {{"a", "b"}}}).isPlain());
}

TEST(IndexDef, CostsTheLongestOfItsTexts) {
  EXPECT_EQ(makeIndex({}).textWork(), 0U);
  EXPECT_EQ(makeIndex({.base = {"0..1000"}}).textWork(), 0U);
  EXPECT_EQ(makeIndex({.base = {"abc", "ab", "automatic", "d"}}).textWork(), 36U);
}

TEST(IndexDef, NotesWhichOfItsBoundsAreComputed) {
  const IndexDef index = makeIndex({.name = "input", .ranges = {{"1", {"0..9"}}, {"1", {"(a)"}}}});
  EXPECT_EQ(index.name(), "input");
  ASSERT_EQ(index.conditionalBounds().size(), 2U);
  EXPECT_EQ(index.conditionalBounds()[0].computed, nullptr);
  EXPECT_EQ(index.conditionalBounds()[1].computed, index.conditionalBounds()[1].bounds.get());
}

TEST(IndexDefDeathTest, StopsTheProgramAtConditionalBoundsOfAnotherKind) {
  DefinitionParts parts;
  ConditionalBounds& bounds = parts.conditionalBounds.emplace_back();
  bounds.condition = Program::constant(1);
  bounds.bounds = std::make_unique<BoundsInteger>();
  EXPECT_DEATH(static_cast<void>(IndexDef(std::move(parts))), "entry.constant != nullptr");
}

}  // namespace
