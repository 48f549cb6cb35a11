#include "sw/parm/bounds.h"

#include <gtest/gtest.h>

#include <climits>
#include <memory>
#include <random>

#include "tests/support/expressions.h"

namespace {

std::string show(const Spans& spans) {
  std::string shown;
  for (const auto& [low, high] : spans) {
    shown += "[" + std::to_string(low) + ", " + std::to_string(high) + "]";
  }
  return shown;
}

BoundsInteger integersOf(const Spans& spans, overflow_t overflow = OVERFLOW_SATURATE) {
  BoundsInteger bounds(overflow);
  for (const auto& [low, high] : spans) EXPECT_EQ(bounds.addSpan(low, high), 0);
  return bounds;
}

BoundsString stringsOf(const std::vector<std::string>& texts) {
  BoundsString bounds;
  for (const std::string& text : texts) EXPECT_EQ(bounds.addText(text), 0);
  return bounds;
}

BoundsParm parmOf(const std::vector<std::string>& texts, const Spans& spans) {
  BoundsParm bounds;
  for (const std::string& text : texts) EXPECT_EQ(bounds.strings().addText(text), 0);
  for (const auto& [low, high] : spans) EXPECT_EQ(bounds.integers().addSpan(low, high), 0);
  return bounds;
}

struct CheckCase {
  std::string value;
  bool accepted;
  std::string corrected;  // the value after a check with fix
};

// Without fix the value is never touched, and the verdict is the same.
void expectChecks(const Bounds& bounds, std::initializer_list<CheckCase> cases) {
  for (const CheckCase& c : cases) {
    SCOPED_TRACE("value \"" + c.value + "\"");
    std::string value = c.value;
    EXPECT_EQ(bounds.check(value, false), c.accepted);
    EXPECT_EQ(value, c.value);
    EXPECT_EQ(bounds.check(value, true), c.accepted);
    EXPECT_EQ(value, c.corrected);
  }
}

struct RangeCase {
  overflow_t mode;
  int value;
  int min;
  int max;
  int result;
};

TEST(RangeCheck, BringsAValueIntoTheRange) {
  const RangeCase cases[] = {
      {OVERFLOW_SATURATE, 5, 0, 9, 5},
      {OVERFLOW_SATURATE, 0, 0, 9, 0},
      {OVERFLOW_SATURATE, -1, 0, 9, 0},
      {OVERFLOW_SATURATE, 9, 0, 9, 9},
      {OVERFLOW_SATURATE, 10, 0, 9, 9},
      {OVERFLOW_SATURATE, INT_MIN, -3, -3, -3},
      {OVERFLOW_SATURATE, INT_MAX, -3, -3, -3},
      {OVERFLOW_SATURATE, INT_MIN, INT_MIN, INT_MAX, INT_MIN},
      {OVERFLOW_WRAP, 5, 0, 9, 5},
      {OVERFLOW_WRAP, 0, 0, 9, 0},
      {OVERFLOW_WRAP, 9, 0, 9, 9},
      {OVERFLOW_WRAP, 10, 0, 9, 0},
      {OVERFLOW_WRAP, 25, 0, 9, 5},
      {OVERFLOW_WRAP, -1, 0, 9, 9},
      {OVERFLOW_WRAP, -5, 0, 9, 5},
      {OVERFLOW_WRAP, -10, 0, 9, 0},
      {OVERFLOW_WRAP, -11, 0, 9, 9},
      {OVERFLOW_WRAP, 12, 10, 11, 10},
      {OVERFLOW_WRAP, 7, -4, -2, -2},
      {OVERFLOW_WRAP, 100, 7, 7, 7},
      // The differences of these need more than 32 bits.
      {OVERFLOW_WRAP, INT_MAX, INT_MIN, 0, -2},
      {OVERFLOW_WRAP, INT_MIN, 0, INT_MAX, 0},
      {OVERFLOW_WRAP, INT_MIN, INT_MAX, INT_MAX, INT_MAX},
      {OVERFLOW_WRAP, INT_MIN, INT_MIN + 1, INT_MAX, INT_MAX},
      // Nothing lies outside the whole range.
      {OVERFLOW_WRAP, INT_MIN, INT_MIN, INT_MAX, INT_MIN},
      {OVERFLOW_WRAP, INT_MAX, INT_MIN, INT_MAX, INT_MAX},
  };
  for (const RangeCase& c : cases) {
    SCOPED_TRACE(std::to_string(c.value) + " in [" + std::to_string(c.min) + ", " +
                 std::to_string(c.max) + "], mode " + std::to_string(c.mode));
    EXPECT_EQ(rangeCheck(c.mode, c.value, c.min, c.max), c.result);
  }
}

TEST(RangeCheck, WrapsByWholeTurns) {
  for (int min = -5; min <= 5; ++min) {
    for (int max = min; max <= 6; ++max) {
      const int span = max - min + 1;
      for (int value = -40; value <= 40; ++value) {
        int expected = value;
        while (expected > max) expected -= span;
        while (expected < min) expected += span;
        ASSERT_EQ(rangeCheck(OVERFLOW_WRAP, value, min, max), expected)
            << value << " in [" << min << ", " << max << "]";
      }
    }
  }
}

TEST(RangeCheckDeathTest, StopsTheProgramWhenMaxIsBelowMin) {
  const std::string assertion =
      R"(bounds\.cpp:[0-9]+: int rangeCheck\(overflow_t, int, int, int\): Assertion `max >= min')";
  EXPECT_DEATH(rangeCheck(OVERFLOW_SATURATE, 5, 9, 0), assertion);
  EXPECT_DEATH(rangeCheck(OVERFLOW_WRAP, 5, 1, 0), assertion);
}

struct LimitCase {
  int value;
  int roundedUp;
  int roundedDown;
};

TEST(LimitToSpans, FindsTheNearestAllowedValue) {
  const Spans spans = {{0, 3}, {10, 12}, {20, 20}};
  const LimitCase cases[] = {
      {-1, 0, 0},   {0, 0, 0},       {3, 3, 3},         {4, 10, 3},   {9, 10, 3},
      {10, 10, 10}, {12, 12, 12},    {13, 20, 12},      {19, 20, 12}, {20, 20, 20},
      {21, 20, 20}, {INT_MIN, 0, 0}, {INT_MAX, 20, 20},
  };
  for (const LimitCase& c : cases) {
    SCOPED_TRACE(c.value);
    EXPECT_EQ(limitToSpans(c.value, true, OVERFLOW_SATURATE, spans), c.roundedUp);
    EXPECT_EQ(limitToSpans(c.value, false, OVERFLOW_SATURATE, spans), c.roundedDown);
  }
}

TEST(LimitToSpans, WrapsOverTheWholeOfTheSpansFirst) {
  const Spans spans = {{0, 3}, {10, 12}};  // 13 numbers from end to end
  const LimitCase cases[] = {
      {13, 0, 0}, {17, 10, 3}, {23, 10, 10}, {-1, 12, 12}, {-4, 10, 3}, {-3, 10, 10},
  };
  for (const LimitCase& c : cases) {
    SCOPED_TRACE(c.value);
    EXPECT_EQ(limitToSpans(c.value, true, OVERFLOW_WRAP, spans), c.roundedUp);
    EXPECT_EQ(limitToSpans(c.value, false, OVERFLOW_WRAP, spans), c.roundedDown);
  }
}

TEST(LimitToSpans, LeavesTheValueAloneWithoutSpans) {
  EXPECT_EQ(limitToSpans(-7, true, OVERFLOW_SATURATE, {}), -7);
  EXPECT_EQ(limitToSpans(INT_MAX, false, OVERFLOW_WRAP, {}), INT_MAX);
}

TEST(LimitToSpans, KnowsTheEndsOfTheNumbers) {
  const Spans spans = {{INT_MIN, INT_MIN}, {INT_MAX, INT_MAX}};
  EXPECT_EQ(limitToSpans(INT_MIN, true, OVERFLOW_WRAP, spans), INT_MIN);
  EXPECT_EQ(limitToSpans(INT_MAX, true, OVERFLOW_WRAP, spans), INT_MAX);
  EXPECT_EQ(limitToSpans(0, true, OVERFLOW_WRAP, spans), INT_MAX);
  EXPECT_EQ(limitToSpans(0, false, OVERFLOW_WRAP, spans), INT_MIN);
}

struct OrderCase {
  Spans spans;
  bool ordered;
};

TEST(AreOrdered, WantsANumberLeftOutBetweenNeighbours) {
  const OrderCase cases[] = {
      {{}, true},
      {{{5, 5}}, true},
      {{{5, 4}}, false},
      {{{0, 3}, {5, 9}}, true},
      {{{0, 3}, {4, 9}}, false},  // touch
      {{{0, 3}, {3, 9}}, false},  // overlap
      {{{5, 9}, {0, 3}}, false},
      {{{0, 3}, {5, 4}}, false},
      {{{0, 1}, {3, 4}, {6, 7}}, true},
      {{{0, 1}, {3, 5}, {6, 7}}, false},
      {{{INT_MIN, INT_MAX}}, true},
      {{{INT_MIN, -2}, {0, INT_MAX}}, true},
      {{{0, INT_MAX}, {INT_MIN, -2}}, false},  // no number comes before the least one
  };
  for (const OrderCase& c : cases) {
    SCOPED_TRACE(show(c.spans));
    EXPECT_EQ(areOrdered(c.spans), c.ordered);
  }
}

struct AddCase {
  Spans added;
  Spans spans;
};

TEST(AddSpan, JoinsWhatOverlapsOrTouches) {
  const AddCase cases[] = {
      {{{0, 3}, {4, 9}}, {{0, 9}}},
      {{{0, 3}, {5, 9}}, {{0, 3}, {5, 9}}},
      {{{5, 9}, {0, 3}}, {{0, 3}, {5, 9}}},
      {{{5, 9}, {0, 4}}, {{0, 9}}},
      {{{0, 9}, {3, 5}}, {{0, 9}}},
      {{{0, 9}, {0, 9}}, {{0, 9}}},
      {{{3, 5}, {0, 9}}, {{0, 9}}},
      {{{0, 5}, {3, 9}}, {{0, 9}}},
      {{{3, 9}, {0, 5}}, {{0, 9}}},
      {{{0, 1}, {10, 11}, {20, 21}, {5, 6}}, {{0, 1}, {5, 6}, {10, 11}, {20, 21}}},
      {{{0, 1}, {10, 11}, {20, 21}, {2, 9}}, {{0, 11}, {20, 21}}},
      {{{0, 1}, {10, 11}, {20, 21}, {1, 20}}, {{0, 21}}},
      {{{0, 1}, {10, 11}, {20, 21}, {-5, 30}}, {{-5, 30}}},
      {{{0, 1}, {10, 11}, {20, 21}, {12, 18}}, {{0, 1}, {10, 18}, {20, 21}}},
      {{{0, 1}, {10, 11}, {20, 21}, {12, 19}}, {{0, 1}, {10, 21}}},
      {{{3, 3}, {1, 1}, {2, 2}}, {{1, 3}}},
      {{{INT_MAX, INT_MAX}, {INT_MIN, INT_MIN}}, {{INT_MIN, INT_MIN}, {INT_MAX, INT_MAX}}},
      {{{INT_MIN, INT_MAX}, {INT_MIN, INT_MIN}, {INT_MAX, INT_MAX}}, {{INT_MIN, INT_MAX}}},
      {{{0, INT_MAX}, {INT_MIN, -1}}, {{INT_MIN, INT_MAX}}},
      {{{0, INT_MAX}, {INT_MIN, -2}}, {{INT_MIN, -2}, {0, INT_MAX}}},
  };
  for (const AddCase& c : cases) {
    SCOPED_TRACE(show(c.added));
    const BoundsInteger bounds = integersOf(c.added);
    EXPECT_EQ(show(bounds.spans()), show(c.spans));
    EXPECT_EQ(bounds.count(), c.spans.size());
    EXPECT_TRUE(bounds.isConsistent());
  }
}

TEST(AddSpan, RefusesAnEmptySpan) {
  BoundsInteger bounds = integersOf({{0, 3}});
  EXPECT_EQ(bounds.addSpan(5, 4), 1);
  EXPECT_EQ(bounds.addSpan(INT_MAX, INT_MIN), 1);
  EXPECT_EQ(show(bounds.spans()), "[0, 3]");
  EXPECT_EQ(bounds.addSpan(5, 5), 0);
  EXPECT_EQ(show(bounds.spans()), "[0, 3][5, 5]");
}

// The numbers from FIRST up, as a set that is held against the spans.
constexpr int FIRST = -2;
constexpr int NUMBERS = 7;
using NumberSet = std::vector<bool>;

bool contains(const NumberSet& set, int value) {
  return FIRST <= value && value < FIRST + NUMBERS && set[static_cast<size_t>(value - FIRST)];
}

Spans runsOf(const NumberSet& set) {
  Spans runs;
  for (int value = FIRST; value < FIRST + NUMBERS; ++value) {
    if (!contains(set, value)) continue;
    if (contains(set, value - 1)) {
      runs.back().second = value;
    } else {
      runs.emplace_back(value, value);
    }
  }
  return runs;
}

int nearest(const NumberSet& set, int value, bool roundUp) {
  const Spans runs = runsOf(set);
  value = std::max(runs.front().first, std::min(runs.back().second, value));
  while (!contains(set, value)) value += roundUp ? 1 : -1;
  return value;
}

void expectAllowed(const BoundsInteger& bounds, const NumberSet& set) {
  ASSERT_EQ(show(bounds.spans()), show(runsOf(set)));
  for (int value = FIRST - 2; value < FIRST + NUMBERS + 2; ++value) {
    std::string text = std::to_string(value);
    ASSERT_EQ(bounds.check(text, true), contains(set, value)) << value;
    ASSERT_EQ(text, std::to_string(nearest(set, value, true)));
    for (const bool roundUp : {true, false}) {
      ASSERT_EQ(limitToSpans(value, roundUp, OVERFLOW_SATURATE, bounds.spans()),
                nearest(set, value, roundUp));
    }
  }
}

TEST(AddSpan, EveryOrderOfSpansGivesTheirUnion) {
  Spans all;
  for (int low = FIRST; low < FIRST + NUMBERS; ++low) {
    for (int high = low; high < FIRST + NUMBERS; ++high) all.emplace_back(low, high);
  }
  for (const Span& a : all) {
    for (const Span& b : all) {
      for (const Span& c : all) {
        SCOPED_TRACE(show({a, b, c}));
        NumberSet set(NUMBERS);
        BoundsInteger bounds;
        for (const auto& [low, high] : {a, b, c}) {
          ASSERT_EQ(bounds.addSpan(low, high), 0);
          for (int value = low; value <= high; ++value) {
            set[static_cast<size_t>(value - FIRST)] = true;
          }
        }
        ASSERT_NO_FATAL_FAILURE(expectAllowed(bounds, set));
      }
    }
  }
}

TEST(AddSpan, QuestionsBetweenAdditionsChangeNothing) {
  std::mt19937 random(1);
  for (int round = 0; round < 500; ++round) {
    SCOPED_TRACE(round);
    BoundsInteger asked;
    BoundsInteger unasked;
    for (int i = 0; i < 8; ++i) {
      const int low = static_cast<int>(random() % 30);
      const int high = low + static_cast<int>(random() % 4);
      EXPECT_EQ(asked.addSpan(low, high), 0);
      EXPECT_EQ(unasked.addSpan(low, high), 0);
      EXPECT_TRUE(asked.isConsistent());
    }
    ASSERT_EQ(show(asked.spans()), show(unasked.spans()));
  }
}

TEST(AddSpan, ManySpansCostAboutTheirNumberInAnyOrder) {
  constexpr int COUNT = 200'000;
  BoundsInteger ascending;
  BoundsInteger descending;
  BoundsInteger touching;
  for (int i = 0; i < COUNT; ++i) {
    EXPECT_EQ(ascending.addSpan(3 * i, 3 * i + 1), 0);
    EXPECT_EQ(descending.addSpan(-3 * i, -3 * i + 1), 0);
    EXPECT_EQ(touching.addSpan(i, i), 0);
  }
  EXPECT_EQ(ascending.count(), static_cast<size_t>(COUNT));
  EXPECT_EQ(descending.count(), static_cast<size_t>(COUNT));
  EXPECT_EQ(show(touching.spans()), "[0, 199999]");
  // A walk over the spans for each of these would not end in time.
  std::string value;
  for (int i = 0; i < COUNT; ++i) {
    value = std::to_string(3 * i + 2);
    EXPECT_FALSE(ascending.check(value, false));
  }
}

TEST(BoundsString, AcceptsOnlyItsTexts) {
  const BoundsString bounds = stringsOf({"auto", "off", "Manual"});
  EXPECT_EQ(bounds.correction(), "auto");
  EXPECT_EQ(bounds.count(), 3U);
  EXPECT_EQ(bounds.texts(), (std::set<std::string>{"Manual", "auto", "off"}));
  EXPECT_TRUE(bounds.isConsistent());
  expectChecks(bounds, {
                           {"auto", true, "auto"},
                           {"off", true, "off"},
                           {"Manual", true, "Manual"},
                           {"manual", false, "auto"},
                           {"on", false, "auto"},
                           {"", false, "auto"},
                           {"7", false, "auto"},
                       });
}

TEST(BoundsString, WithoutTextsAcceptsEveryText) {
  expectChecks(BoundsString(), {{"", true, ""}, {"on", true, "on"}, {"7", true, "7"}});
  EXPECT_EQ(BoundsString().count(), 0U);
  EXPECT_EQ(BoundsString().correction(), "");
}

TEST(BoundsString, TakesTheFirstTextEverAddedAsItsCorrection) {
  BoundsString bounds;
  EXPECT_EQ(bounds.addText(""), 1);
  EXPECT_EQ(bounds.count(), 0U);
  EXPECT_EQ(bounds.correction(), "");
  EXPECT_EQ(bounds.addText("off"), 0);
  EXPECT_EQ(bounds.addText("auto"), 0);
  EXPECT_EQ(bounds.addText("auto"), 0);
  EXPECT_EQ(bounds.addText(""), 1);
  EXPECT_EQ(bounds.count(), 2U);
  EXPECT_EQ(bounds.correction(), "off");
  bounds.clear();
  EXPECT_EQ(bounds.count(), 0U);
  EXPECT_EQ(bounds.correction(), "off");  // the correction outlives the texts
  EXPECT_EQ(bounds.addText("auto"), 0);
  expectChecks(bounds, {{"on", false, "off"}});
}

TEST(BoundsInteger, SaturatesAtItsEnds) {
  expectChecks(integersOf({{0, 9}}), {
                                         {"0", true, "0"},
                                         {"9", true, "9"},
                                         {"12", false, "9"},
                                         {"10", false, "9"},
                                         {"-1", false, "0"},
                                         {"-3", false, "0"},
                                         {"abc", false, "0"},
                                         {"5x", false, "0"},  // counts as 0, not as 5
                                         {"", true, ""},      // the empty text is the number 0
                                         {"0x09", true, "0x09"},
                                         {"0x0A", false, "9"},
                                         {"010", true, "010"},
                                         {"012", false, "9"},
                                         {" 7", true, " 7"},
                                         {"7 ", false, "0"},
                                     });
}

TEST(BoundsInteger, WrapsWhereItIsToldTo) {
  expectChecks(integersOf({{0, 9}}, OVERFLOW_WRAP), {
                                                        {"12", false, "2"},
                                                        {"-1", false, "9"},
                                                        {"10", false, "0"},
                                                        {"9", true, "9"},
                                                        {"abc", false, "0"},
                                                    });
}

TEST(BoundsInteger, RoundsUpInGaps) {
  expectChecks(integersOf({{0, 3}, {10, 12}}), {
                                                   {"3", true, "3"},
                                                   {"4", false, "10"},
                                                   {"5", false, "10"},
                                                   {"9", false, "10"},
                                                   {"10", true, "10"},
                                                   {"13", false, "12"},
                                               });
}

TEST(BoundsInteger, CorrectsWhatIsNoNumberAsItWouldZero) {
  expectChecks(integersOf({{5, 9}}), {{"abc", false, "5"}, {"", false, "5"}});
  expectChecks(integersOf({{-9, -5}}), {{"abc", false, "-5"}});
  expectChecks(integersOf({{-9, -5}, {5, 9}}), {{"abc", false, "5"}});
}

TEST(BoundsInteger, TakesTheNumberThatItIsGiven) {
  BoundsInteger bounds;
  ASSERT_EQ(bounds.addSpan(3, 9), 0);
  std::string value = "0x5";
  EXPECT_TRUE(bounds.check(value, 5, true));
  EXPECT_EQ(value, "0x5");
  EXPECT_FALSE(bounds.check(value, 12, false));
  EXPECT_EQ(value, "0x5");
  EXPECT_FALSE(bounds.check(value, 12, true));
  EXPECT_EQ(value, "9");
  EXPECT_FALSE(bounds.check(value, std::nullopt, true));
  EXPECT_EQ(value, "3");
}

TEST(BoundsInteger, ReadsNumbersInAnyBase) {
  expectChecks(integersOf({{10, 10}}), {
                                           {"0x0A", true, "0x0A"},
                                           {"0XA", true, "0XA"},
                                           {"012", true, "012"},
                                           {"+10", true, "+10"},
                                           {"010", false, "10"},                // 8
                                           {"4294967306", true, "4294967306"},  // 32 bits count
                                       });
}

TEST(BoundsInteger, WithoutSpansAcceptsEveryNumber) {
  expectChecks(BoundsInteger(), {{"7", true, "7"},
                                 {"-2147483648", true, "-2147483648"},
                                 {"", true, ""},
                                 {"abc", false, "0"}});
  EXPECT_TRUE(BoundsInteger().isConsistent());
  EXPECT_EQ(BoundsInteger().count(), 0U);
}

TEST(BoundsInteger, ClearRemovesTheSpans) {
  BoundsInteger bounds = integersOf({{5, 9}, {0, 3}});
  bounds.clear();
  EXPECT_EQ(bounds.count(), 0U);
  EXPECT_EQ(bounds.addSpan(7, 8), 0);
  EXPECT_EQ(show(bounds.spans()), "[7, 8]");
}

TEST(BoundsParm, AsksTheSpansAboutNumbersAndTheTextsAboutAllElse) {
  expectChecks(parmOf({"auto", "7", "20"}, {{0, 3}}), {
                                                          {"3", true, "3"},
                                                          {"4", false, "3"},
                                                          {"7", false, "3"},  // though it is a text
                                                          {"20", false, "3"},
                                                          {"auto", true, "auto"},
                                                          {"off", false, "auto"},
                                                          {"5x", false, "auto"},
                                                          {"", false, "auto"},
                                                      });
}

TEST(BoundsParm, WithTextsOnlyAsksThemAlways) {
  expectChecks(parmOf({"auto", "7"}, {}), {
                                              {"auto", true, "auto"},
                                              {"7", true, "7"},
                                              {"07", false, "auto"},
                                              {"8", false, "auto"},
                                              {"off", false, "auto"},
                                              {"", false, "auto"},
                                          });
}

TEST(BoundsParm, WithSpansOnlyRejectsTheEmptyValueAlways) {
  expectChecks(parmOf({}, {{0, 9}}), {
                                         {"7", true, "7"},
                                         {"12", false, "9"},
                                         {"auto", false, "0"},
                                         {"", false, ""},  // 0 is allowed: it stays empty
                                     });
  expectChecks(parmOf({}, {{5, 9}}), {{"", false, "5"}, {"0", false, "5"}});
  expectChecks(parmOf({}, {{-9, -5}}), {{"", false, "-5"}});
}

TEST(BoundsParm, WithoutEntriesAcceptsEverything) {
  expectChecks(BoundsParm(), {{"", true, ""}, {"7", true, "7"}, {"auto", true, "auto"}});
  EXPECT_TRUE(BoundsParm().isConsistent());
}

struct ValueCase {
  std::string text;
  int result;
  size_t texts;
  std::string spans;
};

TEST(BoundsParm, TakesANumberTextForASpan) {
  const ValueCase cases[] = {
      {"7", 0, 0, "[7, 7]"},   {"-7", 0, 0, "[-7, -7]"}, {"0x10", 0, 0, "[16, 16]"},
      {"010", 0, 0, "[8, 8]"}, {"", 0, 0, "[0, 0]"},  // all of the empty text converts
      {"auto", 0, 1, ""},      {"7x", 0, 1, ""},         {" ", 0, 1, ""},
  };
  for (const ValueCase& c : cases) {
    SCOPED_TRACE(c.text);
    BoundsParm bounds;
    EXPECT_EQ(bounds.addValue(c.text), c.result);
    EXPECT_EQ(bounds.strings().count(), c.texts);
    EXPECT_EQ(show(bounds.integers().spans()), c.spans);
    EXPECT_EQ(bounds.count(), 1U);
  }
}

TEST(BoundsParm, CountsAndClearsBothMembers) {
  BoundsParm bounds = parmOf({"auto", "off"}, {{0, 3}, {5, 9}, {20, 21}});
  EXPECT_EQ(bounds.count(), 5U);
  EXPECT_TRUE(bounds.isConsistent());
  bounds.clear();
  EXPECT_EQ(bounds.count(), 0U);
  EXPECT_EQ(bounds.strings().correction(), "auto");
}

// One item as a definition text has it; the upper text may be missing.
struct ItemText {
  std::string lower;
  std::optional<std::string> upper = std::nullopt;
};

BoundsExpression expressionOf(const std::vector<ItemText>& items, Variables& variables) {
  BoundsExpression bounds;
  for (const ItemText& text : items) {
    // The empty text means an expression that could not be compiled.
    const auto program = [&variables](const std::string& t) {
      return t.empty() ? Program() : programOf(t, variables);
    };
    BoundsExpression::Item item{program(text.lower), std::nullopt};
    if (text.upper) item.upper = program(*text.upper);
    bounds.addItem(std::move(item));
  }
  return bounds;
}

struct EvaluateCase {
  std::vector<ItemText> items;
  int result;
  std::string spans;
  std::set<std::string> texts = {};
};

TEST(BoundsExpression, AddsWhatItsItemsAreInASituation) {
  const EvaluateCase cases[] = {
      {{}, 0, ""},
      {{{"limit"}}, 0, "[10, 10]"},
      {{{"0", "limit - 1"}}, 0, "[0, 9]"},
      {{{"limit", "limit"}}, 0, "[10, 10]"},
      {{{"limit + 5", "30"}, {"0", "3"}, {"mode"}}, 0, "[0, 3][15, 30]", {"auto"}},
      {{{"\"12\""}}, 0, "[12, 12]"},  // a number text is a number here
      {{{"\"\""}}, 0, "[0, 0]"},
      {{{"\"off\""}, {"mode + 1"}}, 0, "", {"auto1", "off"}},
      // -1: a program is missing
      {{{""}}, -1, ""},
      {{{"1", ""}}, -1, ""},
      {{{"unset", ""}}, -1, ""},  // before anything is evaluated
      {{{"", "1"}}, -1, ""},
      // -2: the lower value is neither a number nor a text
      {{{"unset"}}, -2, ""},
      {{{"7 / 0"}}, -2, ""},
      {{{"unset", "5"}}, -2, ""},
      {{{"unset", "unset"}}, -2, ""},
      // -3: the lower end is no number
      {{{"mode", "5"}}, -3, ""},
      {{{"\"1\"", "5"}}, -3, ""},  // a text in quotes is none, whatever it spells
      {{{"mode", "unset"}}, -3, ""},
      // -4: the upper end is no number
      {{{"1", "unset"}}, -4, ""},
      {{{"1", "mode"}}, -4, ""},
      {{{"1", "\"5\""}}, -4, ""},
      {{{"1", "1 % 0"}}, -4, ""},
      // -5: upside down
      {{{"limit", "9"}}, -5, ""},
      {{{"limit", "-2147483648"}}, -5, ""},
      // What the items before the failing one added stays.
      {{{"1", "2"}, {"mode"}, {"unset"}, {"5", "6"}}, -2, "[1, 2]", {"auto"}},
  };
  const std::string ten = "10";
  const std::string mode = "auto";
  for (size_t i = 0; i < std::size(cases); ++i) {
    const EvaluateCase& c = cases[i];
    SCOPED_TRACE("row " + std::to_string(i));
    Variables variables;
    const BoundsExpression bounds = expressionOf(c.items, variables);
    Situation situation(variables.size());
    if (const auto slot = variables.find("limit")) situation.bind(*slot, operandOf(ten));
    if (const auto slot = variables.find("mode")) situation.bind(*slot, operandOf(mode));
    BoundsParm out;
    EXPECT_EQ(bounds.evaluate(out, situation), c.result);
    EXPECT_EQ(show(out.integers().spans()), c.spans);
    EXPECT_EQ(out.strings().texts(), c.texts);
    EXPECT_EQ(bounds.count(), c.items.size());
  }
}

TEST(BoundsExpression, AddsToWhatIsThere) {
  Variables variables;
  const BoundsExpression bounds = expressionOf({{"4", "9"}}, variables);
  BoundsParm out = parmOf({"off"}, {{0, 3}});
  EXPECT_EQ(bounds.evaluate(out, SituationView()), 0);
  EXPECT_EQ(show(out.integers().spans()), "[0, 9]");
  EXPECT_EQ(out.strings().texts(), (std::set<std::string>{"off"}));
}

TEST(BoundsExpression, AddsAQuotedTextAsItStands) {
  BoundsExpression bounds;
  for (const std::string text : {"auto", "7", ""}) {
    bounds.addItem({Program::constant(text), std::nullopt, true});
  }
  BoundsParm out;
  EXPECT_EQ(bounds.evaluate(out, SituationView()), 0);
  EXPECT_EQ(show(out.integers().spans()), "");
  EXPECT_EQ(out.strings().texts(), (std::set<std::string>{"7", "auto"}));
}

TEST(BoundsExpression, ChecksWithoutAnyVariable) {
  Variables variables;
  expectChecks(expressionOf({{"2 * 5", "20"}, {"\"auto\""}}, variables), {
                                                                             {"10", true, "10"},
                                                                             {"9", false, "10"},
                                                                             {"21", false, "20"},
                                                                             {"auto", true, "auto"},
                                                                             {"off", false, "auto"},
                                                                             {"", false, "auto"},
                                                                         });
  // The one defined side decides even where nothing is bound.
  expectChecks(expressionOf({{"limit || 5"}}, variables), {{"5", true, "5"}, {"6", false, "5"}});
}

TEST(BoundsExpression, AcceptsEverythingWhileItHasNoValue) {
  Variables variables;
  for (const ItemText& item : std::vector<ItemText>{{"limit"},
                                                    {"0", "limit"},
                                                    {"7 / 0"},
                                                    {"9", "0"},
                                                    {"\"a\"", "5"},
                                                    {"0", "\"a\""},
                                                    {""}}) {
    SCOPED_TRACE(item.lower + ".." + item.upper.value_or(""));
    expectChecks(expressionOf({{"1", "2"}, item}, variables),
                 {{"99", true, "99"}, {"on", true, "on"}, {"", true, ""}});
  }
}

struct ConsistencyCase {
  std::vector<ItemText> items;
  bool consistent;
};

TEST(BoundsExpression, IsConsistentWhereItsConstantItemsHaveValues) {
  const ConsistencyCase cases[] = {
      {{}, true},
      {{{"5"}}, true},
      {{{"\"auto\""}}, true},
      {{{"0", "9"}}, true},
      {{{"9", "9"}}, true},
      {{{"9", "8"}}, false},
      {{{""}}, false},
      {{{"0", ""}}, false},
      {{{"7 / 0"}}, false},
      {{{"\"a\"", "5"}}, false},
      {{{"0", "\"a\""}}, false},
      {{{"0", "7 / 0"}}, false},
      // Items with variables are judged in a situation only.
      {{{"limit"}}, true},
      {{{"limit / 0"}}, true},
      {{{"limit", "0"}}, true},
      {{{"0", "limit"}}, true},
      {{{"\"a\"", "limit"}}, true},
      {{{"limit", "0"}, {"0", "9"}, {"9", "8"}}, false},
  };
  for (size_t i = 0; i < std::size(cases); ++i) {
    SCOPED_TRACE("row " + std::to_string(i));
    Variables variables;
    EXPECT_EQ(expressionOf(cases[i].items, variables).isConsistent(), cases[i].consistent);
  }
}

TEST(BoundsExpression, ClearRemovesTheItems) {
  Variables variables;
  BoundsExpression bounds = expressionOf({{"1", "2"}, {"5"}}, variables);
  EXPECT_EQ(bounds.count(), 2U);
  bounds.clear();
  EXPECT_EQ(bounds.count(), 0U);
  expectChecks(bounds, {{"99", true, "99"}});
}

TEST(Bounds, AreDestroyedThroughTheirBase) {
  Variables variables;
  std::vector<std::unique_ptr<Bounds>> all;
  all.push_back(std::make_unique<BoundsString>(stringsOf({"a text that needs memory of its own"})));
  all.push_back(std::make_unique<BoundsInteger>(integersOf({{0, 1}})));
  all.push_back(std::make_unique<BoundsParm>(parmOf({"auto"}, {{0, 1}})));
  all.push_back(std::make_unique<BoundsExpression>(expressionOf({{"1"}}, variables)));
  for (const auto& bounds : all) {
    EXPECT_GT(bounds->count(), 0U);
    EXPECT_TRUE(bounds->isConsistent());
    bounds->clear();
    EXPECT_EQ(bounds->count(), 0U);
  }
}

}  // namespace
