// Runs ostrel-play --diff on pairs of texts and compares all that it prints.

#include <gtest/gtest.h>

#include <fstream>
#include <string>

#include "tests/harness/temp_dir.h"
#include "tests/support/run_program.h"

namespace {

class PlayDiff : public testing::Test {
 protected:
  void write(const std::string& name, const std::string& text) const {
    std::ofstream(folder_.path() + "/" + name) << text;
  }
  // Compares two texts.
  [[nodiscard]] Outcome diff(const std::string& old, const std::string& now,
                             const std::string& options = "") const {
    write("old", old);
    write("new", now);
    return runCommand("cd '" + folder_.path() + "' && '" + OSTREL_PLAY + "' --diff " + options +
                      " old new 2>&1");
  }

 private:
  TempDir folder_;
};

constexpr const char* GAIN = "gain rw { rangeValid { 0..9 } default { 3 } }\n";
constexpr const char* MODES =
    "mode rw { rangeValid { \"a\", \"b\" } default { \"a\" } }\n"
    "x rw { rangeValid (mode == \"a\") { 0..9 } rangeValid { 0..5 } default { 1 } }\n";

TEST_F(PlayDiff, TellsWhatTheNewTextMeans) {
  const struct {
    std::string old;
    std::string now;
    const char* expected;
    int status;
  } cases[] = {
      {GAIN, GAIN, "0 incompatible, 0 other changes\n", 0},
      {GAIN, std::string("# The gain.\n\n") + GAIN, "0 incompatible, 0 other changes\n", 0},
      {GAIN, "gain rw { rangeValid { 0..20 } default { 3 } }\n",
       "new:1: change: gain has the wider range 0..20, and had 0..9\n"
       "  gain has the range 0..20: line 1, rangeValid { 0..20 }\n"
       "0 incompatible, 1 other changes\n",
       0},
      {GAIN, "gain rw { rangeValid { 0..7 } default { 3 } }\n",
       "new:1: incompatible: gain has the narrower range 0..7, and had 0..9\n"
       "  gain has the range 0..7: line 1, rangeValid { 0..7 }\n"
       "1 incompatible, 0 other changes\n",
       1},
      {GAIN, "gain rw { rangeValid { 0..7, 12 } default { 3 } }\n",
       "new:1: incompatible: gain has another range 0..7 12, and had 0..9\n"
       "  gain has the range 0..7 12: line 1, rangeValid { 0..7, 12 }\n"
       "1 incompatible, 0 other changes\n",
       1},
      {GAIN, "gain rw { rangeValid { 0..9 } default { 4 } }\n",
       "new:1: change: gain has the default 4, and had 3\n"
       "  gain has the default 4: line 1, default { 4 }\n"
       "0 incompatible, 1 other changes\n",
       0},
      {GAIN, "gain ro { rangeValid { 0..9 } default { 3 } }\n",
       "new:1: incompatible: gain is \"ro\", and was \"rw\"\n"
       "1 incompatible, 0 other changes\n",
       1},
      {GAIN, "gian rw { rangeValid { 0..9 } default { 3 } }\n",
       "old:1: incompatible: gain is gone; perhaps it is gian now\n"
       "new:1: change: gian is new; perhaps it was gain\n"
       "1 incompatible, 1 other changes\n",
       1},
      {GAIN, "volume rw { rangeValid { 0..9 } default { 3 } }\n",
       "old:1: incompatible: gain is gone; perhaps it is volume now\n"
       "new:1: change: volume is new; perhaps it was gain\n"
       "1 incompatible, 1 other changes\n",
       1},
      {GAIN, "title rw { }\n",
       "old:1: incompatible: gain is gone\n"
       "new:1: change: title is new\n"
       "1 incompatible, 1 other changes\n",
       1},
      {"i index { rangeValid { 1..3 } }\nx rw { index { i } }\n",
       "i index { rangeValid { 1..2, 4 } }\nx rw { index { i } }\n",
       "new:1: incompatible: i has no longer the values 3\n"
       "new:1: change: i has the new values 4\n"
       "1 incompatible, 1 other changes\n",
       1},
      {"i index { rangeValid { 1..3 } }\nx rw { index { i } }\n",
       "i index { rangeValid { 1..3 } }\nx rw { }\n",
       "new:2: incompatible: x has no indices, and had [i]\n"
       "1 incompatible, 0 other changes\n",
       1},
      {MODES,
       "mode rw { rangeValid { \"a\", \"b\" } default { \"a\" } }\n"
       "x rw { rangeValid (mode == \"a\") { 0..9 } rangeValid { 0..4 } default { 1 } }\n",
       "new:2: incompatible: x has the narrower range 0..4, and had 0..5, with mode=b\n"
       "  x has the range 0..4: line 2, rangeValid { 0..4 }\n"
       "1 incompatible, 0 other changes\n",
       1},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.now);
    const Outcome outcome = diff(c.old, c.now);
    EXPECT_EQ(outcome.out, c.expected);
    EXPECT_EQ(outcome.status, c.status);
  }
}

// Each text has `m`, and an `a` that is different.
TEST_F(PlayDiff, TellsWhatClientsCanNoLongerSet) {
  const struct {
    const char* old;
    const char* now;
    const char* expected;
  } cases[] = {
      {"rangeValid { 0..9 }", "rangeValid (m == 0) { 0..9 } rangeValid (m == 1) { 0..3 }",
       "new:2: incompatible: a has the narrower range 0..3, and had 0..9, with m=1\n"
       "  a has the range 0..3: line 2, rangeValid (m == 1) { 0..3 }; m is 1\n"},
      {"rangeValid { 0..3 }", "rangeValid { 0..3 } ctrlRO (m == 1)",
       "new:2: incompatible: a can no longer be set, with m=1\n"
       "  a is read-only: line 2, ctrlRO (m == 1); m is 1\n"},
      {"rangeValid { 0..3 }", "rangeValid { 0..3 } ctrlValid (m == 0)",
       "new:2: incompatible: a can no longer be set, with m=1\n"
       "  a is not available: line 2, ctrlValid (m == 0); m is 1\n"},
      {"rangeValid { 0..3 } valueChange { \"on\" -> 2 }", "rangeValid { 0..3 }",
       "new:2: incompatible: a: the value on is refused, and became 2\n"},
      {"rangeValid { 0..3 } valueChange { \"on\" -> 2 }",
       "rangeValid { 0..3 } valueChange { \"on\" -> 1 }",
       "new:2: incompatible: a: the value on becomes 1, and became 2\n"},
      {"rangeValid { 0..9 } rangeDoc { 1, 2 }", "rangeValid { 0..3 } rangeDoc { 1, 2 }",
       "new:2: incompatible: a: the value 4 is refused, and became 4\n"},
  };
  for (const auto& [old, now, expected] : cases) {
    SCOPED_TRACE(now);
    const std::string m = "m rw { rangeValid { 0..1 } default { 0 } }\n";
    const Outcome outcome = diff(m + "a rw { default { 0 } " + old + " }\n",
                                 m + "a rw { default { 0 } " + now + " }\n", "-q");
    EXPECT_EQ(outcome.out, expected);
    EXPECT_EQ(outcome.status, 1);
  }
}

TEST_F(PlayDiff, QuietTellsOnlyWhatIsIncompatible) {
  EXPECT_EQ(diff(GAIN, "gain rw { rangeValid { 0..20 } default { 2 } }\n", "-q").out, "");
  EXPECT_EQ(diff(GAIN, "title rw { }\n", "-q").out, "old:1: incompatible: gain is gone\n");
}

TEST_F(PlayDiff, ComparesEachVariant) {
  const std::string old = "gain rw { rangeValid (TOP == 9) { 0..9 } rangeValid { 0..5 } }\n";
  const std::string now = "gain rw { rangeValid (TOP == 9) { 0..9 } rangeValid { 0..4 } }\n";
  const Outcome outcome = diff(old, now, "-D TOP=9,7");
  EXPECT_EQ(outcome.out,
            "new:1: incompatible: gain has the narrower range 0..4, and had 0..5, where TOP=7\n"
            "  gain has the range 0..4: line 1, rangeValid { 0..4 }\n"
            "1 incompatible, 0 other changes\n");
  EXPECT_EQ(outcome.status, 1);
}

// However many parameters have the index.
TEST_F(PlayDiff, TellsOnceOfAnIndexThatBecomesNarrower) {
  const std::string parameters =
      "x rw { index { i } default { 1 } }\ny rw { index { i } default { 1 } }\n"
      "m rw { rangeValid { 0..1 } default { 0 } }\n";
  const struct {
    const char* old;
    const char* now;
    const char* options;
    const char* expected;
  } cases[] = {
      {"rangeValid { 1..4 }", "rangeValid (M == 1) { 1..2 } rangeValid (M != 1) { 1..4 }",
       "-D M=1,2",
       "new:1: incompatible: i has no longer the values 3, 4, where M=1\n"
       "1 incompatible, 0 other changes\n"},
      {"rangeValid { 1..4 }",
       "rangeValid { 1..4 } rangeValid (m == 1) { 1..2 } rangeValid (m != 1) { 1..4 }", "",
       "new:1: incompatible: i no longer has the value of x[3], with m=1\n"
       "  x[3] does not exist, by the index i: line 1, rangeValid (m == 1) { 1..2 }; i is 3, m is "
       "1\n"
       "1 incompatible, 0 other changes\n"},
      // What is too much to list is not compared.
      {"rangeValid { 0..2147483647 }", "rangeValid { 0..2147483646 }", "",
       "0 incompatible, 0 other changes\n"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.now);
    const Outcome outcome =
        diff(std::string("i index { ") + c.old + " }\n" + parameters,
             std::string("i index { ") + c.now + " }\n" + parameters, c.options);
    EXPECT_EQ(outcome.out, c.expected);
  }
}

TEST_F(PlayDiff, SavedValuesAreKeptOrNot) {
  write("saved",
        "# from a device\n"
        "\n"
        "gain=9\n"
        "title=NO SIGNAL\n"
        "level=4\n"
        "gone=1\n"
        "never=1\n");
  const Outcome outcome = diff(
      "gain rw { rangeValid { 0..9 } default { 9 } }\ntitle rw { }\nlevel rw { rangeValid { "
      "0..(gain) } }\n"
      "gone rw { }\n",
      "gain rw { rangeValid { 0..7 } default { 7 } }\ntitle rw { }\nlevel rw { rangeValid { "
      "0..(gain - 4) } }\n",
      "-q --values=saved");
  EXPECT_EQ(
      outcome.out,
      "old:4: incompatible: gone is gone\n"
      "new:1: incompatible: gain has the narrower range 0..7, and had 0..9\n"
      "  gain has the range 0..7: line 1, rangeValid { 0..7 }\n"
      "new:3: incompatible: level has the narrower range 0..3, and had 0..9\n"
      "  level has the range 0..3: line 3, rangeValid { 0..(gain - 4) }; gain is 7\n"
      "new:3: incompatible: level has a range that cannot be worked out, and had 0, with gain=0\n"
      "  level has no range (-5): line 3, rangeValid { 0..(gain - 4) }; gain is 0\n"
      "saved:3: incompatible: gain: the saved 9 is refused; the value is 7\n"
      "saved:5: incompatible: level: the saved 4 becomes 3\n"
      "saved:6: incompatible: gone: the saved 1 has no parameter any more\n");
  EXPECT_EQ(outcome.status, 1);
}

TEST_F(PlayDiff, TellsOfSavedValuesThatSayNothing) {
  write("saved", "\xEF\xBB\xBFgain=3\r\nnever=1\ngain[1]=5\n");
  EXPECT_EQ(diff(GAIN, GAIN, "--values=saved").out,
            "saved:2: change: never: the old text has no parameter for the saved 1\n"
            "saved:3: change: gain[1]: a device of the old text does not keep the saved 5\n"
            "0 incompatible, 2 other changes\n");
}

TEST_F(PlayDiff, RefusesWhatItCannotRead) {
  const Outcome broken = diff(GAIN, "gain rw {\n");
  EXPECT_EQ(broken.status, 2);
  EXPECT_EQ(countOf(broken.out, "new:1:"), 1U) << broken.out;
  write("saved", "gain\n=3\ntitle=\"a\" b\nlevel=\"a\ngain = 3\n");
  const Outcome values = diff(GAIN, GAIN, "--values=saved");
  EXPECT_EQ(values.status, 2);
  EXPECT_EQ(countOf(values.out, "write name=value\n"), 2U) << values.out;
  EXPECT_EQ(countOf(values.out, "saved:3: there is something behind the value\n"), 1U);
  EXPECT_EQ(countOf(values.out, "saved:4: "), 1U);
  EXPECT_EQ(countOf(values.out, "saved:5: write name=value, without blanks around the sign\n"), 1U);
  EXPECT_EQ(diff(GAIN, GAIN, "--values=none").out,
            "ostrel-play: cannot read none: No such file or directory\n");
  EXPECT_EQ(diff(GAIN, GAIN, "> /dev/full").status, 2);
}

}  // namespace
