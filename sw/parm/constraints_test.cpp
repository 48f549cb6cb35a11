#include "sw/parm/constraints.h"

#include <gtest/gtest.h>

#include "tests/support/definitions.h"

namespace {

using Texts = TextSituation::Texts;

struct CorrectionCase {
  std::string value;
  Texts situation;
  int result;
  std::string corrected;
};

void expectCorrections(const ParmDef& parm, const std::vector<CorrectionCase>& cases) {
  for (const CorrectionCase& c : cases) {
    SCOPED_TRACE('"' + c.value + "\" in " + testing::PrintToString(c.situation));
    const TextSituation situation(parm.variables(), c.situation);
    std::string value = c.value;
    EXPECT_EQ(Constraints(parm, situation).correct(value), c.result);
    EXPECT_EQ(value, c.corrected);
  }
}

TEST(Constraints, ApplyWhileARulesConditionIsTrue) {
  const ParmDef parm =
      makeParm({.rules = {{"a", "0", "1"}, {"sw::this > 5", "0", "1"}, {"b", "0", "1"}}});
  struct {
    Texts situation;
    bool apply;
  } const cases[] = {
      {{}, false},
      {{{"a", "0"}, {"b", "0"}}, false},
      {{{"a", "1"}}, true},
      {{{"a", "0"}, {"b", "1"}}, true},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.situation));
    const TextSituation situation(parm.variables(), c.situation);
    // The value under test is not known to the conditions yet.
    EXPECT_EQ(Constraints(parm, situation).apply(), c.apply);
  }
}

TEST(Constraints, ApplyWhileARunTimeRangeHasItsValues) {
  const ParmDef parm =
      makeParm({.common = {.ranges = {{"1", {"0..9"}}, {"a", {"(lo)..(hi)"}}, {"b", {"(lo)"}}}}});
  struct {
    Texts situation;
    bool apply;
  } const cases[] = {
      {{}, false},
      {{{"lo", "1"}, {"hi", "5"}}, false},
      {{{"a", "1"}, {"lo", "1"}, {"hi", "5"}}, true},
      {{{"a", "1"}, {"lo", "1"}}, false},
      {{{"a", "1"}, {"lo", "5"}, {"hi", "1"}}, false},
      {{{"a", "1"}, {"b", "1"}, {"lo", "1"}}, true},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.situation));
    const TextSituation situation(parm.variables(), c.situation);
    EXPECT_EQ(Constraints(parm, situation).apply(), c.apply);
  }
}

TEST(Constraints, NeverApplyToBoundsAlone) {
  const ParmDef parm = makeParm({.common = {.base = {"0..9"}, .ranges = {{"1", {"0..5"}}}}});
  EXPECT_FALSE(Constraints(parm, Situation(0)).apply());
  expectCorrections(parm, {{"99", {}, 0, "99"}});
}

TEST(ConstraintRules, CorrectAViolatingValue) {
  const ParmDef parm = makeParm({.rules = {{"on", "sw::this <= limit", "limit"}}});
  expectCorrections(parm, {
                              {"5", {{"on", "1"}, {"limit", "9"}}, 0, "5"},
                              {"9", {{"on", "1"}, {"limit", "9"}}, 0, "9"},
                              {"10", {{"on", "1"}, {"limit", "9"}}, 0, "9"},
                              {"10", {{"on", "0"}, {"limit", "9"}}, 0, "10"},
                              {"0x10", {{"on", "1"}, {"limit", "0xF"}}, 0, "15"},
                              {"", {{"on", "1"}, {"limit", "-1"}}, 0, "-1"},  // the empty text is 0
                              {"b", {{"on", "1"}, {"limit", "auto"}}, 0, "auto"},
                          });
}

TEST(ConstraintRules, ShowLaterRulesTheCorrectedValue) {
  const ParmDef parm =
      makeParm({.rules = {{"1", "sw::this != 1", "2"},
                          {"1", "sw::this != 2", "\"three\""},
                          {"sw::this == \"three\"", "sw::this != \"three\"", "4"}}});
  expectCorrections(
      parm, {{"1", {}, 0, "4"}, {"2", {}, 0, "4"}, {"three", {}, 0, "4"}, {"5", {}, 0, "5"}});
}

TEST(ConstraintRules, FailWhenACorrectionIsViolatedAgain) {
  // Each of the two takes what the other one corrects to for a violation.
  const ParmDef parm =
      makeParm({.rules = {{"1", "sw::this >= 10", "10"}, {"1", "sw::this <= 5", "5"}}});
  expectCorrections(parm, {{"3", {}, 1, "5"}, {"7", {}, 1, "5"}, {"20", {}, 1, "5"}});
}

TEST(ConstraintRules, HoldWhenTheCorrectionIsTheValueItself) {
  // The test never holds, but nothing was changed, so nothing is looked at again.
  const ParmDef parm = makeParm({.rules = {{"1", "0", "sw::this"}}});
  expectCorrections(parm, {{"7", {}, 0, "7"},
                           {"auto", {}, 0, "auto"},
                           {"0x7", {}, 1, "7"}});  // another text, though the same number
}

TEST(ConstraintRules, EmptyTheValueWhereACorrectionGivesNone) {
  const ParmDef parm =
      makeParm({.rules = {{"1", "sw::this != 1", "2"}, {"1", "sw::this != 2", "1 / zero"}}});
  expectCorrections(parm, {{"2", {{"zero", "0"}}, 2, ""},
                           {"1", {{"zero", "0"}}, 2, ""},
                           {"1", {}, 2, ""},  // undefined
                           {"3", {}, 0, "3"}});
}

TEST(ConstraintRules, TakeAnUndefinedTestForAViolation) {
  const ParmDef parm = makeParm({.rules = {{"1", "limit > sw::this", "0"}}});
  expectCorrections(parm, {{"7", {}, 1, "0"}, {"7", {{"limit", "8"}}, 0, "7"}});
}

TEST(RunTimeRanges, CorrectByWhatAppliesInStatementOrder) {
  const ParmDef parm = makeParm(
      {.common = {.base = {"0..3"},
                  .ranges = {{"a", {"40..49"}}, {"b", {"(lo)..(hi)", "auto"}}, {"1", {"(std)"}}},
                  .translations = {{"low", "min"}, {"min", "10"}}}});
  const Texts second = {{"b", "1"}, {"lo", "10"}, {"hi", "19"}};
  const Texts firstAndSecond = {{"a", "1"}, {"b", "1"}, {"lo", "10"}, {"hi", "19"}};
  const Texts secondAndThird = {{"b", "1"}, {"lo", "10"}, {"hi", "19"}, {"std", "pal"}};
  const Texts firstAndThird = {{"a", "1"}, {"b", "1"}, {"lo", "19"}, {"hi", "10"}, {"std", "7"}};
  expectCorrections(parm, {
                              {"15", second, 0, "15"},  // the base bounds do not count
                              {"25", second, 0, "19"},
                              {"", second, 0, "auto"},
                              {"x", second, 0, "auto"},
                              {"low", second, 0, "10"},  // translated twice, then accepted
                              {"15", firstAndSecond, 0, "15"},
                              {"25", firstAndSecond, 0, "40"},
                              {"x", firstAndSecond, 0, "40"},
                              {"pal", secondAndThird, 0, "pal"},
                              {"x", secondAndThird, 0, "auto"},
                              {"7", firstAndThird, 0, "7"},
                              {"15", firstAndThird, 0, "40"},
                          });
}

TEST(RunTimeRanges, ComeAfterTheRules) {
  const ParmDef parm = makeParm(
      {.common = {.ranges = {{"1", {"0..(hi)"}}}}, .rules = {{"1", "sw::this != 1", "hi * 2"}}});
  expectCorrections(parm,
                    {{"1", {{"hi", "5"}}, 0, "5"}, {"1", {}, 2, ""}, {"3", {{"hi", "5"}}, 0, "3"}});
}

TEST(RunTimeRanges, LeaveARuleAloneWhileTheyHaveNoValues) {
  // Nor do the ranges beside them count then, or the translations.
  const ParmDef parm = makeParm({.common = {.ranges = {{"1", {"0..(hi)"}}, {"1", {"50..59"}}},
                                            .translations = {{"max", "59"}}},
                                 .rules = {{"1", "sw::this != 1", "70"}}});
  expectCorrections(parm, {{"max", {}, 0, "max"},
                           {"1", {}, 0, "70"},
                           {"max", {{"hi", "5"}}, 0, "59"},
                           {"1", {{"hi", "5"}}, 0, "5"}});
}

TEST(RunTimeRanges, DoNotKnowTheValueUnderTest) {
  const ParmDef parm = makeParm({.common = {.ranges = {{"1", {"0..(sw::this)"}}}}});
  const Situation situation(parm.variables().size());
  EXPECT_FALSE(Constraints(parm, situation).apply());
  std::string value = "7";
  EXPECT_EQ(Constraints(parm, situation).correct(value), 0);
  EXPECT_EQ(value, "7");
}

}  // namespace
