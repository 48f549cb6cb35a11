#include "sw/parm/present_bounds.h"

#include <gtest/gtest.h>

#include "tests/support/definitions.h"

namespace {

using Texts = TextSituation::Texts;

// A definition with these conditional bounds, and the bounds as they are in a situation.
class BoundsIn {
 public:
  BoundsIn(const std::vector<RangeText>& ranges, const Texts& texts, UnusableRange unusable)
      : index_(makeIndex({.ranges = ranges})),
        situation_(index_.variables(), texts),
        bounds_(index_.conditionalBounds(), situation_, unusable) {}

  [[nodiscard]] bool hasComputed() const { return bounds_.hasComputed(); }
  /// What becomes of `value`, with "refused: " before it where nothing accepted it.
  [[nodiscard]] std::string judge(std::string value) const {
    const bool accepted = bounds_.judge(value);
    return accepted ? value : "refused: " + value;
  }

 private:
  IndexDef index_;
  TextSituation situation_;
  PresentBounds bounds_;
};

struct JudgeCase {
  std::string value;
  std::string outcome;
};

void expectOutcomes(const BoundsIn& bounds, const std::vector<JudgeCase>& cases) {
  for (const JudgeCase& c : cases) {
    SCOPED_TRACE('"' + c.value + '"');
    EXPECT_EQ(bounds.judge(c.value), c.outcome);
  }
}

TEST(PresentBounds, RefuseEveryValueWhereNoneApplies) {
  for (const Texts& texts : {Texts{}, Texts{{"a", "0"}}}) {
    const BoundsIn bounds({{"a", {"0..9"}}, {"a", {"(lo)"}}}, texts, UNUSABLE_ACCEPTS);
    EXPECT_FALSE(bounds.hasComputed());
    expectOutcomes(bounds, {{"5", "refused: 5"}, {"", "refused: "}, {"auto", "refused: auto"}});
  }
}

TEST(PresentBounds, AcceptByAnyAndCorrectByTheFirst) {
  const BoundsIn bounds({{"0", {"100"}}, {"1", {"0..3", "10..12"}}, {"a", {"auto", "off"}}},
                        {{"a", "1"}}, UNUSABLE_DROPPED);
  EXPECT_FALSE(bounds.hasComputed());
  expectOutcomes(bounds, {{"3", "3"},
                          {"4", "refused: 10"},  // gaps round up
                          {"13", "refused: 12"},
                          {"off", "off"},
                          {"on", "refused: 0"},
                          {"", "refused: "}});  // the texts have no empty one, and 0 is in a span
}

TEST(PresentBounds, WorkOutRunTimeRanges) {
  const std::vector<RangeText> ranges = {{"1", {"(lo)..(hi)", "(std)", "30"}}, {"a", {"(std)"}}};
  const BoundsIn bounds(ranges, {{"lo", "0x4"}, {"hi", " 6"}, {"std", "auto"}}, UNUSABLE_DROPPED);
  EXPECT_TRUE(bounds.hasComputed());
  expectOutcomes(bounds, {{"3", "refused: 4"},
                          {"4", "4"},
                          {"6", "6"},
                          {"7", "refused: 30"},
                          {"30", "30"},
                          {"31", "refused: 30"},
                          {"auto", "auto"},
                          {"off", "refused: auto"},
                          {"", "refused: auto"}});
}

TEST(PresentBounds, DropOrAcceptWhatHasNoValue) {
  struct {
    Texts texts;
    std::string why;
  } const cases[] = {
      {{}, "both limits are undefined"},
      {{{"lo", "1"}}, "the upper limit is undefined"},
      {{{"lo", "auto"}, {"hi", "5"}}, "the lower limit of a span is a text"},
      {{{"lo", "1"}, {"hi", "auto"}}, "the upper limit is a text"},
      {{{"lo", "6"}, {"hi", "5"}}, "the limits are upside down"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.why);
    const std::vector<RangeText> ranges = {{"1", {"7..8", "(lo)..(hi)"}}, {"1", {"20..29"}}};
    const BoundsIn dropped(ranges, c.texts, UNUSABLE_DROPPED);
    EXPECT_FALSE(dropped.hasComputed());
    // No item of an unusable range counts, not even those before the one that has no value.
    expectOutcomes(dropped, {{"20", "20"}, {"7", "refused: 20"}, {"x", "refused: 20"}});
    const BoundsIn accepting(ranges, c.texts, UNUSABLE_ACCEPTS);
    EXPECT_FALSE(accepting.hasComputed());
    expectOutcomes(accepting, {{"20", "20"}, {"7", "7"}, {"x", "x"}, {"", ""}});
  }
}

TEST(PresentBounds, AcceptByARangeWithoutValueThatComesLater) {
  const BoundsIn bounds({{"1", {"0..9"}}, {"1", {"(lo)"}}}, {}, UNUSABLE_ACCEPTS);
  expectOutcomes(bounds, {{"9", "9"}, {"15", "15"}, {"x", "x"}});
}

}  // namespace
