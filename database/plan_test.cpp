#include "database/plan.h"

#include <gtest/gtest.h>

#include "sw/parm/parm_name.h"
#include "tests/support/database.h"

namespace {

constexpr std::string_view TEXT = R"(
in index { rangeValid { 1..2 } }
mode rw { }
width ro { rangeValid (mode == 1) { 9 } rangeValid (mode != 1) { 5 } }
crop rw { index { in } rangeValid { 0..(width) } }
alone rw { }
big index { rangeValid { -2147483648..2147483647 } }
small index { rangeValid { 1..1000, "x" } }
origin rw { }
huge rw { index { big, big, big } rangeValid { 0..(origin) } }
wide rw { index { small, small } rangeValid { 0..(left) } }
left rw { rangeValid { 0..(right) } }
right rw { rangeValid { 0..(left) } }
up rw { rangeValid { 0..(down) } }
down rw { rangeValid { 0..(up) } }
)";

using Lines = std::vector<std::string>;

class PlanTest : public testing::Test {
 protected:
  void SetUp() override { define(database_, TEXT, {}); }

  // The plan for a commit of these instances, as "LEVEL FULL-NAME"; with "+" if the commit itself
  // has staged the instance.
  Lines planned(const std::vector<std::string>& names) {
    StagedValues staged;
    for (const std::string& name : names) {
      const ParmName parts = splitName(name);
      staged.stage(*database_.findParm(parts.base), parts.indices, false);
    }
    Lines lines;
    const std::optional<Plan> plan = planCommit(database_, staged);
    if (!plan) {
      EXPECT_EQ(staged.inNameOrder().size(), names.size());
      return {"too large"};
    }
    for (const PlanStep& step : *plan) {
      lines.push_back(std::to_string(step.level) + (step.entry->generated ? " +" : " ") +
                      fullName(*step.entry));
    }
    return lines;
  }

  Database database_;
};

TEST_F(PlanTest, FindsDependentsInItsOrder) {
  Database database;
  // The name "a" comes first, but its level is the highest.
  define(database,
         "m rw { }\nz rw { rangeValid { 0..(m) } }\n"
         "a rw { rangeValid { 0..(m), (z) } }\nb rw { rangeValid { 0..(m) } }\n",
         {});
  Lines names;
  for (const ParmEntry* entry : dependentsOf(database, {database.findNamed("m")})) {
    names.push_back(entry->parm.name());
  }
  EXPECT_EQ(names, (Lines{"b", "z", "a"}));
}

TEST_F(PlanTest, HoldsWhatIsStagedAndEveryInstanceThatDependsOnIt) {
  EXPECT_EQ(planned({}), (Lines{}));
  EXPECT_EQ(planned({"alone"}), (Lines{"0 alone"}));
  EXPECT_EQ(planned({"mode"}), (Lines{"0 mode", "1 +width", "2 +crop[1]", "2 +crop[2]"}));
  EXPECT_EQ(planned({"down"}), (Lines{"0 down", "0 +up"}));
  EXPECT_EQ(planned({"mode", "width"}), (Lines{"0 mode", "1 width", "2 +crop[1]", "2 +crop[2]"}));
}

TEST_F(PlanTest, HoldsWhatNothingDependsOnAtTheStartAndAgainBehindWhatIsStaged) {
  EXPECT_EQ(planned({"crop[2]"}), (Lines{"0 crop[2]"}));
  EXPECT_EQ(planned({"width", "crop[2]"}),
            (Lines{"0 crop[2]", "1 width", "2 +crop[1]", "2 crop[2]"}));
  EXPECT_EQ(planned({"crop[2]", "alone", "mode"}),
            (Lines{"0 alone", "0 crop[2]", "0 mode", "1 +width", "2 +crop[1]", "2 crop[2]"}));
}

TEST_F(PlanTest, IsRefusedWhereTooManyInstancesFollow) {
  EXPECT_EQ(planned({"origin"}), (Lines{"too large"}));   // 2^96
  EXPECT_EQ(planned({"right"}), (Lines{"too large"}));    // 1001 * 1001
  EXPECT_EQ(planned({"huge[7][8][9]", "huge[0][0][0]"}),  // whatever a client names
            (Lines{"0 huge[0][0][0]", "0 huge[7][8][9]"}));
}

TEST_F(PlanTest, HoldsInstancesThatTheIndexDoesNotHave) {
  EXPECT_EQ(planned({"crop[7]", "crop"}), (Lines{"0 crop", "0 crop[7]"}));
}

TEST(Plan, HoldsAMillionInstancesAndNoMore) {
  struct Case {
    const char* dependents;
    std::optional<size_t> steps;
  };
  const Case cases[] = {
      {"wide rw { index { thousand, thousand } ctrlRO (mode == 1) }", 1 + MAX_PLANNED_INSTANCES},
      {"wide rw { index { thousand, thousand } ctrlRO (mode == 1) } one rw { ctrlRO (mode == 1) }",
       std::nullopt},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.dependents);
    Database database;
    const std::string text = "thousand index { rangeValid { 1..1000 } }\nmode rw { }\n";
    define(database, text + c.dependents + "\n", {});
    StagedValues staged;
    staged.stage(*database.findParm("mode"), {}, false);
    const std::optional<Plan> plan = planCommit(database, staged);
    EXPECT_EQ(plan ? std::optional(plan->size()) : std::nullopt, c.steps);
  }
}

}  // namespace
