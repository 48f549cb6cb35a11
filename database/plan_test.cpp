#include "database/plan.h"

#include <gtest/gtest.h>

#include "database/test_database.h"
#include "sw/parm/parm_name.h"

namespace {

constexpr std::string_view TEXT = R"(
in index { rangeValid { 1..2 } }
mode rw { }
width ro { rangeValid (mode == 1) { 9 } rangeValid (mode != 1) { 5 } }
crop rw { index { in } rangeValid { 0..(width) } }
alone rw { }
left rw { rangeValid { 0..(right) } }
right rw { rangeValid { 0..(left) } }
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
    for (const PlanStep& step : planCommit(database_, staged)) {
      lines.push_back(std::to_string(step.level) + (step.entry->generated ? " +" : " ") +
                      fullName(*step.entry));
    }
    return lines;
  }

  Database database_;
};

TEST_F(PlanTest, HoldsWhatIsStagedAndEveryInstanceThatDependsOnIt) {
  EXPECT_EQ(planned({}), (Lines{}));
  EXPECT_EQ(planned({"alone"}), (Lines{"0 alone"}));
  EXPECT_EQ(planned({"mode"}), (Lines{"0 mode", "1 +width", "2 +crop[1]", "2 +crop[2]"}));
  EXPECT_EQ(planned({"mode", "width"}), (Lines{"0 mode", "1 width", "2 +crop[1]", "2 +crop[2]"}));
  EXPECT_EQ(planned({"left"}), (Lines{"0 left", "0 +right"}));
}

TEST_F(PlanTest, HoldsWhatNothingDependsOnAtTheStartAndAgainBehindWhatIsStaged) {
  EXPECT_EQ(planned({"crop[2]"}), (Lines{"0 crop[2]"}));
  EXPECT_EQ(planned({"width", "crop[2]"}),
            (Lines{"0 crop[2]", "1 width", "2 +crop[1]", "2 crop[2]"}));
  EXPECT_EQ(planned({"crop[2]", "alone", "mode"}),
            (Lines{"0 alone", "0 crop[2]", "0 mode", "1 +width", "2 +crop[1]", "2 crop[2]"}));
}

TEST_F(PlanTest, HoldsInstancesThatTheIndexDoesNotHave) {
  EXPECT_EQ(planned({"crop[7]", "crop"}), (Lines{"0 crop", "0 crop[7]"}));
}

}  // namespace
