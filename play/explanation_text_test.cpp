#include "play/explanation_text.h"

#include <gtest/gtest.h>

#include "tests/support/database.h"

namespace {

using Texts = std::vector<std::string>;

const char* const DEVICE = R"(mode rw { rangeValid { "slow", "fast" } default { "fast" } }
place index { rangeValid { 1..4 } rangeValid (mode == "slow") { 1..2 } rangeValid (mode == "fast") { 1..4 } }
rate rw {
  index { place }
  rangeValid { 0..100 }
  ctrlRO (mode == "slow")
  ctrlValid (mode != "")
  valueChange { "max" -> 1000 }
  default { 50 }
}
state ro { rangeValid { 0..9 } }
wild rw { rangeValid { (1 / nought) } }
nought rw { }
)";

class ExplanationText : public testing::Test {
 protected:
  ExplanationText() { define(database_, DEVICE); }

  Transaction& inMode(const std::string& mode) {
    EXPECT_EQ(transaction_.set("mode", mode, true), STAGE_DONE);
    return transaction_;
  }

  Database database_;
  Transaction transaction_{database_};
};

TEST_F(ExplanationText, TellsWhatAnInstanceIsAndWhy) {
  EXPECT_EQ(explanationLines(inMode("slow"), "rate[1]"),
            (Texts{"is \"\"", "is available: line 7, ctrlValid (mode != \"\"); mode is slow",
                   "is read-only: line 6, ctrlRO (mode == \"slow\"); mode is slow",
                   "has the range 0..100: line 5, rangeValid { 0..100 }",
                   "has the default 50: line 9, default { 50 }"}));
  EXPECT_EQ(explanationLines(inMode("fast"), "rate[1]")[2],
            "is not read-only: line 6, ctrlRO (mode == \"slow\"); mode is fast");
  EXPECT_EQ(explanationLines(inMode("slow"), "rate[3]")[1],
            "does not exist, by the index place: line 2, rangeValid (mode == \"slow\") { 1..2 }; "
            "place is 3, mode is slow");
  EXPECT_EQ(explanationLines(transaction_, "wild")[1].substr(0, 18), "has no range (-2):");
  EXPECT_EQ(explanationLines(transaction_, "nought"),
            (Texts{"is \"\"", "may have any value", "has no default"}));
  const Texts unknown = {"there is no such parameter, or not with so many index values"};
  for (const char* const name : {"nobody", "rate", "rate[1][2]", ""}) {
    EXPECT_EQ(explanationLines(transaction_, name), unknown) << name;
    EXPECT_EQ(explanationLines(transaction_, name, "1"), unknown) << name;
  }
}

TEST_F(ExplanationText, TellsWhatBecomesOfAValue) {
  const struct {
    const char* mode;
    const char* name;
    const char* value;
    Texts lines;
  } cases[] = {
      {"fast", "nought", "x", {"is accepted"}},
      {"fast", "rate[1]", "7", {"is accepted: line 5, rangeValid { 0..100 }"}},
      {"fast",
       "rate[1]",
       "700",
       {"is refused, as no situation allows it: line 5, rangeValid { 0..100 }"}},
      {"fast",
       "mode",
       "x",
       {"is refused, as no situation allows it: line 1, rangeValid { \"slow\", \"fast\" }"}},
      {"slow",
       "rate[1]",
       "7",
       {"is passed over", "is available: line 7, ctrlValid (mode != \"\"); mode is slow",
        "is read-only: line 6, ctrlRO (mode == \"slow\"); mode is slow"}},
      {"slow",
       "rate[3]",
       "7",
       {"makes a commit fail",
        "does not exist, by the index place: line 2, rangeValid (mode == \"slow\") { 1..2 }; place "
        "is 3, mode is slow"}},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(explanationLines(inMode(c.mode), c.name, c.value), c.lines) << c.name << c.value;
  }
}

}  // namespace
