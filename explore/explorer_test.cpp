#include "explore/explorer.h"

#include <gtest/gtest.h>

#include "coverage/tracefile.h"
#include "tests/support/lying_device.h"
#include "vid_std.h"

namespace {

struct Explored {
  ExploreResult result;
  CoverageTotals totals;
  std::vector<std::string> missing;
};

class ExplorerTest : public testing::Test {
 protected:
  ExplorerTest() { initVidStdTables(); }
};

Explored exploreText(const std::string& text, uint64_t steps, uint64_t seed, const Lie& lie = {},
                     std::vector<PlayConstants> variants = {{}}) {
  TextCoverage coverage(text);
  const StartDevice start = startLying(text, lie, &coverage);
  ExploreResult result = explore({start, &coverage, std::move(variants), seed, {steps, {}}});
  return {std::move(result), coverage.totals(), missingCoverage(coverage, "x")};
}

const char* const DEVICE = R"(
mode rw { rangeValid { "1080i/50", "625i/50" } rangeValid (M == "pro") { "720p/50" } default { "1080i/50" } }
i index { rangeValid { 1..3 } rangeValid (n > 0) { 1..(n) } rangeValid (n == 0) { 1..3 } }
n rw { rangeValid { 1..3 } default (mode $ "625") { 2 } default { 3 } }
p rw {
  index { i }
  rangeValid { 0..(vidStd::mode::spal) }
  rangeDoc (lock == 1) { 5 }
  valueChange { "top" -> 719 }
  ctrlRO (lock == 1 && i != 2)
  default { 700 }
}
lock rw { rangeValid { 0..1 } default { 0 } }
locked ro { rangeValid (p[1] == 719 && p[2] < 3) { 1 } rangeValid (p[1] != 719 || p[2] >= 3) { 0 } }
go wo { ctrlValid (M == "pro") rangeValid { "no", "yes" } default { "no" } }
serial ro { }
)";
const std::vector<PlayConstants> MODELS = {{{"M", "basic"}}, {{"M", "pro"}}};

TEST_F(ExplorerTest, ReachesAllThatCanBeReached) {
  for (const uint64_t seed : {1U, 2U}) {
    const Explored explored = exploreText(DEVICE, 4000, seed, {}, MODELS);
    EXPECT_EQ(explored.missing, std::vector<std::string>{}) << seed;
    EXPECT_TRUE(explored.totals.isFull());
    for (const Find& find : explored.result.finds) ADD_FAILURE() << sessionOf(find);
    EXPECT_EQ(explored.result.failure, "");
    EXPECT_EQ(explored.result.steps, 4000U);
    EXPECT_GT(explored.result.commits, 3000U);
  }
}

TEST_F(ExplorerTest, DoesTheSameWithTheSameSeed) {
  const auto outcomeOf = [](uint64_t seed) {
    const Explored explored = exploreText(DEVICE, 700, seed, {}, MODELS);
    std::string outcome =
        std::to_string(explored.result.commits) + " " + std::to_string(explored.totals.percent());
    for (const std::string& line : explored.missing) outcome += "\n" + line;
    return outcome;
  };
  EXPECT_EQ(outcomeOf(5), outcomeOf(5));
  EXPECT_NE(outcomeOf(5), outcomeOf(6));
}

// Each has a fault of one kind, and much beside it.
TEST_F(ExplorerTest, FindsAndShortensFaults) {
  const struct {
    const char* text;
    Lie lie;
    Property property;
    size_t lines;  // that the session has at most
  } cases[] = {
      {"r rw { rangeValid { 0..(n) } valueChange { 1 -> 2 } valueChange { 2 -> 3 } "
       "valueChange { 3 -> 0 } default { 0 } }",
       {},
       PROPERTY_LIMITS,
       4},
      {"r rw { rangeValid { 0..9 } default (r == n) { 7 } default { 3 } }", {}, PROPERTY_REPEAT, 4},
      {"r rw { rangeValid { 0..9 } rangeValid (n == 2) { 20..29 } rangeValid (n != 2) { 1..9 } "
       "default { 1 } }",
       {},
       PROPERTY_REFUSAL,
       6},
      {"r rw { rangeValid { 0..9 } default { 1 } }",
       [](const Call& call, Answer& answer) {
         if (call.method == "try" && answer.changes == Call::Texts{"r=8"}) answer.changes.clear();
       },
       PROPERTY_TRIAL, 5},
      {"a rw { default (r == 5) { 7 } } r rw { rangeValid { 0..9 } default { 5 } }",
       [](const Call& call, Answer& answer) {
         if (call.method == "get_deps") answer.texts.clear();
       },
       PROPERTY_START, 3},
      {"r rw { rangeValid { 0..9 } default { 1 } } s rw { rangeValid { 0..9 } default { 1 } }",
       // What is tried for s says after any commit of r what it did not say before.
       [commits = 0](const Call& call, Answer& answer) mutable {
         for (std::string& change : answer.changes) {
           if (call.method == "commit" && change.starts_with("r=")) ++commits;
           if (call.method == "try" && commits % 2 == 1 && change.starts_with("s=")) change = "s=7";
         }
       },
       PROPERTY_ORDER, 9},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    const std::string text = std::string(DEVICE) + c.text;
    bool isFound = false;
    for (uint64_t seed = 1; seed <= 8 && !isFound; ++seed) {
      for (const Find& find : exploreText(text, 2000, seed, c.lie, MODELS).result.finds) {
        if (find.fault.property != c.property) continue;
        isFound = true;
        const std::string session = sessionOf(find);
        const auto lines = static_cast<size_t>(std::ranges::count(session, '\n'));
        EXPECT_LE(lines, c.lines + 1) << session;  // the constants are a line, too
      }
    }
    EXPECT_TRUE(isFound);
  }
}

// The probe commits each step twice. Where only that has led to a fault, its session does so, too.
TEST_F(ExplorerTest, FindsWhatOnlyASecondCommitLeadsTo) {
  const Lie lie = [committed = 0](const Call& call, Answer& answer) mutable {
    if (call.method == "commit" || call.method.starts_with("single_set")) ++committed;
    if (call.method == "try" && committed > 64) answer.changes = {"r=77"};
  };
  const std::string text = "r rw { rangeValid { 0..9 } default { 1 } }";
  const Explored explored = exploreText(text, 60, 1, lie);
  ASSERT_EQ(explored.result.finds.size(), 1U);
  const Find& find = explored.result.finds.front();
  EXPECT_GT(find.walk.steps.size(), 60U);
  const std::optional<KnownDevice> known = startLying(text, {})({})->known();
  EXPECT_TRUE(foundAgain(find, startLying(text, lie), DeviceNames(*known)));
}

// Thirty parameters, and after some commits "try" tells of each that r becomes what it does not.
std::string crowdText() {
  std::string text = "r rw { rangeValid { 0..9 } default { 1 } }\n";
  for (int i = 0; i < 30; ++i) {
    text += "a" + std::to_string(i) + " rw { rangeValid { 0..9 } default { 1 } }\n";
  }
  return text;
}
Lie lieAfter(int most) {
  return [most, committed = 0](const Call& call, Answer& answer) mutable {
    if (call.method == "commit" && !answer.changes.empty()) ++committed;
    if (call.method == "try" && committed > most) answer.changes.emplace_back("r=77");
  };
}

// What one property says of one parameter is one find, whichever others show it.
TEST_F(ExplorerTest, KeepsTheShortestFindOfACause) {
  const Explored explored = exploreText(crowdText(), 2000, 1, lieAfter(3));
  // That what it holds would change is the other.
  ASSERT_EQ(explored.result.finds.size(), 2U);
  for (const Find& find : explored.result.finds) {
    EXPECT_EQ(find.fault.failed, "r") << sessionOf(find);
    EXPECT_LE(find.walk.steps.size(), 4U) << sessionOf(find);
  }
}

TEST_F(ExplorerTest, KeepsItsFindsWhenItIsInterrupted) {
  const std::string text = crowdText();
  TextCoverage coverage(text);
  for (const int most : {200, 500}) {
    int asked = 0;
    const ExploreBudget budget = {.isInterrupted = [&] { return ++asked > most; }};
    const ExploreResult result =
        explore({startLying(text, lieAfter(50), &coverage), &coverage, {{}}, 1, budget});
    EXPECT_FALSE(result.finds.empty());
    EXPECT_LE(asked, most + 10);
  }
}

TEST_F(ExplorerTest, SaysWhatCannotBeExplored) {
  EXPECT_EQ(exploreText("i index { rangeValid { 1 } }", 10, 1).result.failure,
            "the text has no parameter");
  EXPECT_EQ(exploreText("i index { rangeValid { 1..2000000 } } p rw { index { i } }", 10, 1)
                .result.failure,
            "the device has more than 1000000 instances");
  testing::internal::CaptureStderr();
  EXPECT_EQ(exploreText("p rw { rangeValid { 9..(N) } }", 1000, 1, {},
                        {{{"M", "x"}, {"N", "9"}}, {{"M", "x"}, {"N", "0"}}})
                .result.failure,
            "the device does not start with M=x N=0");
  testing::internal::GetCapturedStderr();
}

// Names and values that are hard to say.
TEST_F(ExplorerTest, TakesAnyText) {
  const char* const texts[] = {
      ("a=b rw { rangeValid { \"x=y\", \"\xff\", \"#\", \"\\\" } default { \"\xff\" } }\n"
       "i index { rangeValid { \"=\", \"$x\" } } p rw { index { i } default { \"a b\" } }"),
      "\xff rw { default { 1 } } b rw { }",
      "go wo { }",
      "a rw { rangeValid { 0..(b) } default { 1 } } b rw { rangeValid { (a)..9 } default { 1 } }",
  };
  for (const char* const text : texts) {
    const Explored explored = exploreText(text, 500, 1);
    for (const Find& find : explored.result.finds) ADD_FAILURE() << sessionOf(find);
    EXPECT_EQ(explored.result.failure, "");
  }
}

}  // namespace
