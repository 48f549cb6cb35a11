#include "database/preview.h"

#include <gtest/gtest.h>

#include "base/system_log.h"
#include "database/commit.h"
#include "tests/support/random_texts.h"

namespace {

constexpr std::string_view TEXT = R"(mode rw { rangeValid { "slow", "fast" } }
rate rw { rangeValid (mode == "slow") { 1..10 } rangeValid (mode == "fast") { 1..100 } }
double ro { rangeValid { (rate * 2) } }
state ro { rangeValid { 0..9 } }
boost rw { ctrlValid (mode == "fast") }
channel index { rangeValid { 1..2 } }
gain rw { index { channel } rangeValid { 0..9 } }
aside rw { index { channel } }
)";

std::string shown(const Preview& found) {
  std::string text;
  for (const PreviewedChange& change : found.changes) {
    text += change.name + ": " + change.before + " -> " + change.after + " (";
    for (const std::string& cause : change.because) {
      text += (&cause == &change.because.front() ? "" : " ") + cause;
    }
    text += ")\n";
  }
  for (const PreviewedRefusal& refusal : found.refusals) {
    text += refusal.name + ": " + refusal.why + "\n";
  }
  return text;
}

// What is staged, what is shown then, and what the commit would return.
struct PreviewCase {
  std::vector<std::pair<const char*, const char*>> staged;
  const char* expected;
  int result;
};

void expectPreview(Database& database, const PreviewCase& one) {
  Transaction transaction(database);
  for (const auto& [name, value] : one.staged) {
    ASSERT_EQ(transaction.set(name, value, false), STAGE_DONE) << name;
  }
  Preview found;
  EXPECT_EQ(preview(transaction, found), one.result) << one.expected;
  EXPECT_EQ(shown(found), one.expected);
}

TEST(Previews, TellWhatChangesBecauseOfWhat) {
  const PreviewCase cases[] = {
      {{}, "", COMMIT_DONE},
      {{{"mode", "slow"}},
       "double: 100 -> 20 (rate)\nmode: fast -> slow (mode)\nrate: 50 -> 10 (mode)\n",
       COMMIT_DONE},
      {{{"rate", "7"}, {"gain[1]", "3"}},
       "double: 100 -> 14 (rate)\ngain[1]:  -> 3 (gain[1])\nrate: 50 -> 7 (rate)\n",
       COMMIT_DONE},
      {{{"state", "3"}}, "state: is read-only, line 4: ro\n", COMMIT_DONE},
      {{{"mode", "slow"}, {"boost", "1"}},
       "double: 100 -> 20 (rate)\nmode: fast -> slow (mode)\nrate: 50 -> 10 (mode)\n"
       "boost: does not exist, line 5: ctrlValid (mode == \"fast\")\n",
       COMMIT_DONE},
      {{{"gain[7]", "3"}},
       "gain[7]: does not exist, line 6: rangeValid { 1..2 }\n",
       COMMIT_INVALID_INDEX},
      {{{"gain", "3"}},
       "gain: there is no instance with so many index values\n",
       COMMIT_INVALID_INDEX},
      {{{"boost", "1"}, {"gain[7]", "3"}, {"gain[1]", "3"}, {"double", "7"}, {"rate", "7"}},
       "boost:  -> 1 (boost)\ndouble: 100 -> 14 (rate)\ngain[1]:  -> 3 (gain[1])\n"
       "rate: 50 -> 7 (rate)\ndouble: is read-only, line 3: ro\n"
       "gain[7]: does not exist, line 6: rangeValid { 1..2 }\n",
       COMMIT_INVALID_INDEX},
      {{{"aside[7]", "1"}, {"boost", "1"}},
       "aside[7]: does not exist, line 6: rangeValid { 1..2 }\n"
       "boost: another value of its level is refused\n",
       COMMIT_INVALID_INDEX},
      {{{"gain[1]", "3"}, {"gain[7]", "3"}, {"rate", "7"}},
       "double: 100 -> 14 (rate)\ngain[1]:  -> 3 (gain[1])\nrate: 50 -> 7 (rate)\n"
       "gain[7]: does not exist, line 6: rangeValid { 1..2 }\n",
       COMMIT_INVALID_INDEX},
  };
  Database database;
  define(database, TEXT);
  Transaction first(database);
  ASSERT_EQ(first.set("mode", "fast", false), STAGE_DONE);
  ASSERT_EQ(first.set("rate", "50", false), STAGE_DONE);
  std::vector<std::string> names;
  ASSERT_EQ(commitNames(first, names), COMMIT_DONE);
  for (const PreviewCase& one : cases) expectPreview(database, one);
}

// Another transaction may commit what this one has staged before.
TEST(Previews, KnowWhatWasAnnouncedMeanwhile) {
  Database database;
  define(database, "i index { rangeValid { 1..2 } }\nnote rw { index { i } }\n");
  Transaction transaction(database);
  Transaction other(database);
  ASSERT_EQ(transaction.set("note[1]", "", false), STAGE_DONE);
  ASSERT_EQ(other.set("note[1]", "", false), STAGE_DONE);
  Preview found;
  EXPECT_EQ(preview(transaction, found), COMMIT_DONE);
  EXPECT_EQ(shown(found), "note[1]:  ->  (note[1])\n");
  std::vector<std::string> names;
  ASSERT_EQ(commitNames(other, names), COMMIT_DONE);
  Preview again;
  EXPECT_EQ(preview(transaction, again), COMMIT_DONE);
  EXPECT_EQ(shown(again), "");
}

// A commit judges what nothing depends on before other values have followed.
TEST(Previews, TellWhyInTheSituationInWhichAValueIsJudged) {
  Database database;
  define(database,
         "mode rw { }\nspeed ro { rangeValid { (mode * 2) } }\n"
         "turbo rw { ctrlValid (speed == 4) }\n");
  Transaction transaction(database);
  ASSERT_EQ(transaction.set("mode", "2", false), STAGE_DONE);
  ASSERT_EQ(transaction.set("turbo", "1", false), STAGE_DONE);
  Preview found;
  EXPECT_EQ(preview(transaction, found), COMMIT_DONE);
  EXPECT_EQ(shown(found),
            "mode:  -> 2 (mode)\nspeed:  -> 4 (mode)\nturbo:  ->  (speed)\n"
            "turbo: does not exist, line 3: ctrlValid (speed == 4)\n");
}

// One that takes no value any more makes the commit fail that has changed what it follows.
TEST(Previews, TellWhichFollowersMakeTheCommitFail) {
  Database database;
  define(database,
         "mode rw { rangeValid { 0..2 } }\n"
         "bad rw { rangeValid { 0..9 } rangeValid (mode == 1) { 20..30 } }\n"
         "good rw { rangeValid (mode > 0) { 3..4 } rangeValid { 0..4 } }\n"
         "worse rw { rangeValid { 0..9 } rangeValid (bad == 7) { 20..30 } }\n");
  Transaction first(database);
  for (const char* const name : {"bad", "good", "worse"}) {
    ASSERT_EQ(first.set(name, "2", false), STAGE_DONE);
  }
  std::vector<std::string> names;
  ASSERT_EQ(commitNames(first, names), COMMIT_DONE);
  const PreviewCase cases[] = {
      {{{"mode", "2"}}, "good: 2 -> 3 (mode)\nmode:  -> 2 (mode)\n", COMMIT_DONE},
      {{{"mode", "1"}},
       "mode:  -> 1 (mode)\n"
       "bad: its value is refused, line 2: rangeValid (mode == 1) { 20..30 }\n",
       COMMIT_INVALID_VALUE},
      // Stored at first, and refused when it follows.
      {{{"bad", "7"}, {"worse", "5"}},
       "bad: 2 -> 7 (bad)\n"
       "worse: its value is refused, line 4: rangeValid (bad == 7) { 20..30 }\n",
       COMMIT_INVALID_VALUE},
  };
  for (const PreviewCase& one : cases) expectPreview(database, one);
}

TEST(RandomPreviews, TellWhatTheirCommitDoes) {
  const LogRedirection silence([](const std::string& /*line*/) {});
  size_t changes = 0;
  size_t refusals = 0;
  for (uint32_t seed = 0; seed < 4000 && !testing::Test::HasFailure(); ++seed) {
    RandomTexts random(seed);
    const std::string text = random.text();
    Database database;
    if (defineOrRefuse(database, text) != 0) continue;
    SCOPED_TRACE(text);
    for (int round = 0; round < 5; ++round) {
      Transaction transaction(database);
      for (size_t count = 1 + random.below(4); count > 0; --count) {
        const std::string name =
            random.oneOf({"a", "b", "c", "d"}) + random.oneOf({"", "[0]", "[1]", "[0][a]", "[7]"});
        static_cast<void>(random.below(4) == 0
                              ? transaction.reset(name, true)
                              : transaction.set(name, random.oneOf(VALUES), random.below(2) == 0));
      }
      Preview found;
      const int expected = preview(transaction, found);
      std::vector<Change> done;
      CommitRecord record;
      EXPECT_EQ(commit(transaction, done, nullptr, &record), expected);
      ASSERT_EQ(found.changes.size(), done.size());
      for (size_t i = 0; i < done.size(); ++i) {
        EXPECT_EQ(found.changes[i].name, done[i].name);
        EXPECT_EQ(found.changes[i].before, record.before(done[i])) << done[i].name;
        EXPECT_EQ(found.changes[i].after, done[i].held->value.text()) << done[i].name;
      }
      changes += done.size();
      refusals += found.refusals.size();
      EXPECT_EQ(expected == COMMIT_DONE || !found.refusals.empty(), true);
    }
  }
  EXPECT_GT(changes, 1000U);
  EXPECT_GT(refusals, 1000U);
}

}  // namespace
