// Runs the program ostrel-play and compares all that it prints.

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>

#include "tests/harness/temp_dir.h"
#include "tests/support/run_program.h"

namespace {

const char* const DEVICE =
    "gain rw { rangeValid { 0..9 } default { 3 } }\n"
    "level rw { rangeValid { 0..(gain) } default { 2 } }\n";

// A directory with a definition text and sessions, in which the program runs.
class OstrelPlay : public testing::Test {
 protected:
  OstrelPlay() {
    write("device.ostrel", DEVICE);
    write("right.session", "up -> gain=3 level=2\nget gain -> 3\nset gain 5 -> # staged\n");
    write("wrong.session", "up\nget gain -> 4\nfor v in 1 2: validate gain $v -> false\n");
    write("broken.session", "up\n  comit\nget gain -> 3\ncomit\n");
  }

  void write(const std::string& name, const std::string& text) const {
    std::ofstream(folder_.path() + "/" + name) << text;
  }
  [[nodiscard]] std::string contentsOf(const std::string& name) const {
    std::ifstream file(folder_.path() + "/" + name);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  }

  // In a shell, so that redirections are part of the arguments.
  [[nodiscard]] Outcome run(const std::string& arguments) const {
    return runCommand("cd '" + folder_.path() + "' && '" + OSTREL_PLAY + "' " + arguments);
  }

  TempDir folder_;
};

TEST_F(OstrelPlay, ItsStatusSaysWhetherAllIsAsExpected) {
  const struct {
    const char* arguments;
    int status;
  } cases[] = {
      {"device.ostrel right.session", 0},
      {"device.ostrel wrong.session", 1},
      {"device.ostrel right.session wrong.session right.session", 1},
      {"device.ostrel broken.session", 2},
      {"device.ostrel broken.session wrong.session", 2},
      {"device.ostrel none.session", 2},
      {"broken.session /dev/null", 2},
      {"none.ostrel right.session", 2},
      {"device.ostrel .", 2},
      {"device.ostrel right.session < /dev/null > /dev/full", 0},  // there is nothing to write
      {"device.ostrel wrong.session > /dev/full", 2},
      {"--format=tap device.ostrel right.session > /dev/full", 2},
      {"--format=tap device.ostrel right.session", 0},
      {"--format=tap device.ostrel wrong.session", 1},
      {"--format=junit device.ostrel wrong.session", 1},
      {"--format=junit device.ostrel broken.session", 2},
      {"device.ostrel - < wrong.session", 1},
      {"- right.session < device.ostrel", 0},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(run(std::string(c.arguments) + " 2>/dev/null").status, c.status) << c.arguments;
  }
}

TEST_F(OstrelPlay, ShowsDifferencesAsADiffWithReasons) {
  EXPECT_EQ(run("device.ostrel right.session 2>&1").out, "");
  EXPECT_EQ(run("-q device.ostrel wrong.session 2>&1").out,
            "wrong.session:2: not as expected\n"
            "-get gain -> 4\n"
            "+get gain -> 3\n"
            "  gain is 3\n"
            "  gain has the range 0..9: line 1, rangeValid { 0..9 }\n"
            "  gain has the default 3: line 1, default { 3 }\n"
            "wrong.session:3: not as expected with v=1\n"
            "-for v in 1 2: validate gain $v -> false\n"
            "+for v in 1 2: validate gain $v -> true\n"
            "wrong.session:3: not as expected with v=2\n"
            "-for v in 1 2: validate gain $v -> false\n"
            "+for v in 1 2: validate gain $v -> true\n");
}

TEST_F(OstrelPlay, PrintsWhatHappensWhereNothingIsExpected) {
  write("open.session", "up\nset gain 55\nset gain 7\nwhy level 9\nset gone[1] 1\ncommit # now\n");
  EXPECT_EQ(run("device.ostrel open.session 2>&1").out,
            "open.session:1: up -> gain=3 level=2\n"
            "open.session:2: set gain 55 -> refused: parameter value is invalid\n"
            "open.session:4: why level 9\n"
            "  becomes 7: line 2, rangeValid { 0..(gain) }; gain is 7\n"
            "  is accepted: line 2, rangeValid { 0..(gain) }; gain is 7\n"
            "open.session:5: set gone[1] 1 -> refused: parameter name is invalid\n"
            "open.session:6: commit -> gain=7\n");
  EXPECT_EQ(run("-q device.ostrel open.session 2>&1").out, "");
}

TEST_F(OstrelPlay, SaysWhereASessionIsWrongAndPlaysTheOthers) {
  EXPECT_EQ(run("-q device.ostrel broken.session none.session wrong.session 2>&1 >/dev/null").out,
            "broken.session:2:3: the indentation is that of no loop around\n"
            "broken.session:4:1: there is no operation \"comit\"; did you mean \"commit\"?\n"
            "ostrel-play: cannot read none.session: No such file or directory\n");
  EXPECT_EQ(countOf(run("-q device.ostrel broken.session wrong.session 2>/dev/null").out,
                    "not as expected"),
            3U);
}

TEST_F(OstrelPlay, SaysThatTheDeviceDoesNotStart) {
  write("bad.ostrel", "gain rw { rangeValid { 9..0 } }\n");
  const Outcome outcome = run("bad.ostrel right.session 2>&1");
  EXPECT_EQ(outcome.status, 2);
  EXPECT_TRUE(outcome.out.starts_with("bad.ostrel:1:")) << outcome.out;
  EXPECT_TRUE(outcome.out.ends_with("right.session:1:1: the device does not start\n"))
      << outcome.out;
}

// A constant that is missing is the most likely cause.
TEST_F(OstrelPlay, SaysWhichConstantIsMissing) {
  write("model.ostrel", "gain rw {\n  rangeValid { 0..(TOP) }\n}\n");
  const struct {
    const char* arguments;
    const char* last;
  } cases[] = {
      {"model.ostrel right.session", "right.session:1:1: the device does not start\n"},
      {"--explore --steps=9 model.ostrel",
       "ostrel-play: cannot explore model.ostrel: the device does not start\n"},
      {"--record model.ostrel -- true",
       "ostrel-play: there is no device of model.ostrel to record\n"},
  };
  for (const auto& c : cases) {
    const Outcome outcome = run(std::string(c.arguments) + " 2>&1");
    EXPECT_EQ(outcome.status, 2);
    EXPECT_TRUE(outcome.out.starts_with("model.ostrel:2:20: error: ")) << outcome.out;
    EXPECT_EQ(countOf(outcome.out, " -D TOP=..."), 1U) << outcome.out;
    EXPECT_EQ(countOf(outcome.out, "Error creating"), 0U) << outcome.out;
    EXPECT_TRUE(outcome.out.ends_with(c.last)) << outcome.out;
  }
}

TEST_F(OstrelPlay, GivesConstantsToTheText) {
  write("model.ostrel", "gain rw { rangeValid { 0..(TOP) } default { (TOP) } }\n");
  write("model.session", "up -> gain=7\nconstants -> TOP=7\nconstants TOP=5\nup -> gain=5\n");
  EXPECT_EQ(run("-D TOP=7 model.ostrel model.session model.session 2>&1").out, "");
  EXPECT_EQ(run("--define=TOP=8 -q model.ostrel model.session").status, 1);
}

TEST_F(OstrelPlay, WritesTap) {
  write("tap.session",
        "get gain -> \"\" # a\nset level \"#1 \\\\ \\\"x\\\"\" -> refused: no\nup\n");
  EXPECT_EQ(run("--format=tap device.ostrel tap.session broken.session 2>&1").out,
            "TAP version 14\n"
            "ok 1 - tap.session:1: get gain\n"
            "not ok 2 - tap.session:2: set level \"\\#1 \\\\\\\\ \\\\\"x\\\\\"\"\n"
            "  ---\n"
            "  expected: \"refused: no\"\n"
            "  got: \"\"\n"
            "  ...\n"
            "# tap.session:3: up -> gain=3 level=2\n"
            "not ok 3 - broken.session\n"
            "  ---\n"
            "  message: \"broken.session:2:3: the indentation is that of no loop around\"\n"
            "  ...\n"
            "not ok 4 - broken.session\n"
            "  ---\n"
            "  message: \"broken.session:4:1: there is no operation \\\"comit\\\"; did you mean "
            "\\\"commit\\\"?\"\n"
            "  ...\n"
            "1..4\n");
}

TEST_F(OstrelPlay, WritesJunit) {
  write("a<b>.session", "get gain -> \"a & <b>\"\nget level -> \"\"\n");
  EXPECT_EQ(
      run("--format=junit device.ostrel 'a<b>.session' none 2>&1").out,
      "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
      "<testsuites>\n"
      "  <testsuite name=\"a&lt;b&gt;.session\" tests=\"2\" failures=\"1\" errors=\"0\">\n"
      "    <testcase classname=\"a&lt;b&gt;.session\" name=\"a&lt;b&gt;.session:1: get gain\">\n"
      "      <failure message=\"not as expected\">expected: &quot;a &amp; &lt;b&gt;&quot;\n"
      "got: &quot;&quot;</failure>\n"
      "    </testcase>\n"
      "    <testcase classname=\"a&lt;b&gt;.session\" name=\"a&lt;b&gt;.session:2: get level\"/>\n"
      "  </testsuite>\n"
      "  <testsuite name=\"none\" tests=\"1\" failures=\"0\" errors=\"1\">\n"
      "    <testcase classname=\"none\" name=\"none\">\n"
      "      <error message=\"ostrel-play: cannot read none: No such file or directory\"/>\n"
      "    </testcase>\n"
      "  </testsuite>\n"
      "</testsuites>\n");
}

TEST_F(OstrelPlay, MeasuresCoverage) {
  write("model.ostrel",
        "a rw {\n  rangeValid { 0..9 }\n  default (MODEL == 1) { 1 }\n  default (b == 1) { 2 }\n}\n"
        "b ro { default { 1 } }\n");
  write("first.session", "constants MODEL=1\nup\n");
  write("second.session", "constants MODEL=2\nsingle_set_status b 0\nsingle_reset a\n");
  const Outcome first =
      run("-q --coverage-summary --fail-under=80 model.ostrel first.session 2>&1");
  EXPECT_EQ(first.out,
            "60.0 % of model.ostrel: 3 of 4 statements, 1 of 4 outcomes of conditions, 2 of 2 "
            "definitions\n"
            "model.ostrel:3: a: the condition of default was never false\n"
            "model.ostrel:4: a: the condition of default was never asked\n");
  EXPECT_EQ(first.status, 1);
  const Outcome both =
      run("-q --coverage-summary --fail-under=80 --coverage=x.info model.ostrel first.session "
          "second.session 2>&1");
  EXPECT_EQ(both.out,
            "80.0 % of model.ostrel: 3 of 4 statements, 3 of 4 outcomes of conditions, 2 of 2 "
            "definitions\n");
  EXPECT_EQ(both.status, 0);
  EXPECT_EQ(contentsOf("x.info"),
            "TN:\nSF:model.ostrel\nFN:1,a\nFN:6,b\nFNDA:4,a\nFNDA:2,b\nFNF:2\nFNH:2\n"
            "BRDA:3,0,0,1\nBRDA:3,0,1,1\nBRDA:4,0,0,0\nBRDA:4,0,1,1\nBRF:4\nBRH:3\n"
            "DA:1,4\nDA:2,4\nDA:3,1\nDA:4,0\nDA:6,1\nLF:5\nLH:4\nend_of_record\n");
  // A report for programs stays as it is.
  write("third.session",
        "constants MODEL=2\nsingle_reset a -> a=\nsingle_set_status b 1\nsingle_reset a\n");
  const Outcome tap =
      run("-q --format=tap --coverage-summary --fail-under=100 model.ostrel *.session 2>/dev/null");
  EXPECT_EQ(countOf(tap.out, "model.ostrel"), 0U) << tap.out;
}

TEST_F(OstrelPlay, SaysWhereItCannotWriteCoverage) {
  for (const char* const file : {"none/x.info", "/dev/full", "."}) {
    const Outcome outcome =
        run(std::string("--coverage=") + file + " device.ostrel right.session 2>&1");
    EXPECT_EQ(outcome.status, 2) << file;
    EXPECT_TRUE(outcome.out.starts_with(std::string("ostrel-play: cannot write ") + file + ": "))
        << outcome.out;
  }
  EXPECT_EQ(run("--coverage=- device.ostrel right.session 2>&1").out.substr(0, 21),
            "TN:\nSF:device.ostrel\n");
}

TEST_F(OstrelPlay, Explores) {
  // The same walks each time, of which none finds anything.
  const Outcome clean = run("--explore --steps=500 --fail-under=100 device.ostrel 2>&1");
  EXPECT_TRUE(clean.out.ends_with(
      "of 1 variant, seed 1\n"
      "100.0 % of device.ostrel: 4 of 4 statements, 0 of 0 outcomes of conditions, 2 of 2 "
      "definitions\n"))
      << clean.out;
  EXPECT_TRUE(clean.out.starts_with("0 finds in ")) << clean.out;
  EXPECT_EQ(clean.status, 0);
  EXPECT_EQ(run("--explore --steps=500 device.ostrel").out, clean.out);

  // Variants are told apart; what only one of them has is reached there.
  write("model.ostrel",
        "a rw { rangeValid { 0..9 } default (MODEL == 1) { 1 } default (MODEL == 2) { 2 } }\n");
  EXPECT_EQ(countOf(run("--explore --steps=300 -D MODEL=1,2 model.ostrel").out, "\n100.0 % of"),
            1U);
  const Outcome half = run("--explore --steps=300 -D MODEL=1 --fail-under=90 model.ostrel");
  EXPECT_EQ(countOf(half.out, "model.ostrel:1: a: the condition of default was never true\n"), 1U)
      << half.out;
  EXPECT_EQ(half.status, 1);
}

TEST_F(OstrelPlay, WritesASessionForEachFind) {
  write("wrong.ostrel",
        "q rw { rangeValid { 5..9 } default { 9 } }\n"
        "p rw { rangeValid { 0..(q) } valueChange { 1 -> 2 } valueChange { 2 -> 3 }\n"
        "  valueChange { 3 -> 4 } default { 0 } }\n"
        "r rw { default (r == 1) { 2 } default { 1 } }\n");
  const Outcome outcome = run("--explore --steps=2000 -o x.y/found.session wrong.ostrel 2>&1");
  EXPECT_EQ(outcome.status, 2) << outcome.out;
  EXPECT_EQ(outcome.out,
            "ostrel-play: cannot write x.y/found.session: No such file or directory\n");
  const Outcome found = run("--explore --steps=2000 -o found.session wrong.ostrel 2>&1");
  EXPECT_EQ(found.status, 1);
  for (const char* const line :
       {": p holds 3, which is not what it may be: it would become 4: see found",
        "the commit of r once more changes r=", "2 finds in "}) {
    EXPECT_EQ(countOf(found.out, line), 1U) << line << found.out;
  }
  // Each of them fails.
  for (const char* const session : {"found.session", "found-2.session"}) {
    const Outcome played = run(std::string("-q wrong.ostrel ") + session);
    EXPECT_EQ(played.status, 1) << contentsOf(session) << played.out;
  }
  // Without a file they are printed.
  const Outcome printed = run("--explore --steps=2000 wrong.ostrel 2>&1");
  EXPECT_EQ(countOf(printed.out, contentsOf("found.session")), 1U) << printed.out;
  EXPECT_EQ(countOf(printed.out, contentsOf("found-2.session")), 1U) << printed.out;
}

// The time of the walks is not spent on what cannot be kept.
TEST_F(OstrelPlay, LooksForItsFilesBeforeItExplores) {
  const struct {
    const char* options;
    const char* error;
  } cases[] = {
      {"-o none/x", "none/x: No such file or directory"},
      {"-o .", ".: Is a directory"},
      {"-o device.ostrel/x", "device.ostrel/x: Not a directory"},
      {"--coverage=none/x", "none/x: No such file or directory"},
  };
  for (const auto& c : cases) {
    const Outcome outcome =
        run(std::string("--explore --seconds=100 ") + c.options + " device.ostrel 2>&1");
    EXPECT_EQ(outcome.out, std::string("ostrel-play: cannot write ") + c.error + "\n");
    EXPECT_EQ(outcome.status, 2);
  }
}

TEST_F(OstrelPlay, WritesWhatItHasFoundWhenItIsInterrupted) {
  write("wrong.ostrel", "r rw { default (r == 1) { 2 } default { 1 } }\n");
  for (const char* const signal : {"INT", "TERM"}) {
    // As timeout(1) does it: the process, and at once its group as well.
    const std::string kill = std::string("kill -s ") + signal + " $! 2>&1; ";
    const Outcome outcome =
        runCommand("cd '" + folder_.path() + "' && { '" + OSTREL_PLAY +
                   "' --explore --seconds=100 -o found wrong.ostrel 2>&1 & } && sleep 4; " + kill +
                   kill + "wait $!");
    EXPECT_EQ(outcome.status, 1) << outcome.out;
    EXPECT_EQ(countOf(outcome.out, "the commit of r once more changes r="), 1U) << outcome.out;
    EXPECT_EQ(countOf(outcome.out, ", interrupted\n"), 1U) << outcome.out;
    EXPECT_EQ(run("-q wrong.ostrel found").status, 1);
  }
}

TEST_F(OstrelPlay, SaysWhatCannotBeExplored) {
  write("none.ostrel", "# nothing\n");
  EXPECT_EQ(run("--explore --steps=9 none.ostrel 2>&1").out,
            "ostrel-play: cannot explore none.ostrel: the text has no parameter\n");
  write("bad.ostrel", "gain rw {\n  oops\n");
  const Outcome bad = run("--explore --steps=9 bad.ostrel 2>&1");
  EXPECT_TRUE(bad.out.starts_with("bad.ostrel:2:3: error: ")) << bad.out;
  EXPECT_TRUE(bad.out.ends_with("cannot explore bad.ostrel: the device does not start\n"))
      << bad.out;
  EXPECT_EQ(bad.status, 2);
  EXPECT_EQ(run("--explore --steps=9 device.ostrel > /dev/full 2>/dev/null").status, 2);
}

// XML has no way to write some characters, and a definition text may have any byte.
TEST_F(OstrelPlay, WritesXmlAndUtf8WhateverAValueIs) {
  write("bytes.ostrel", "t rw { default { \"\xff\" } }\nu rw { }\n");
  write("bytes.session",
        "reset t\ntry -> x\ncommit -> x\nsingle_set u \xEF\xBF\xBF\\x01 -> x # \xff\nwhy t\n");
  for (const char* const format : {"text", "tap", "junit"}) {
    const std::string out =
        run(std::string("--format=") + format + " bytes.ostrel bytes.session 2>&1").out;
    EXPECT_EQ(out.find_first_of("\xff\x01"), std::string::npos) << out;
    EXPECT_GE(countOf(out, "t=\xEF\xBF\xBD"), 2U) << out;
    EXPECT_GE(countOf(out, "u=&quot;"), format == std::string("junit") ? 1U : 0U) << out;
  }
  EXPECT_EQ(countOf(run("--format=junit bytes.ostrel bytes.session").out, "\xEF\xBF\xBF"), 0U);
}

TEST_F(OstrelPlay, UpdatesSessions) {
  write("new.session", "up\ninclude part\nget gain -> 4 # as before\n");
  write("part", "get level\n");
  const Outcome outcome = run("--update device.ostrel new.session right.session 2>&1");
  EXPECT_EQ(outcome.out, "new.session: updated\npart: updated\n");
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(contentsOf("new.session"), "up\ninclude part\nget gain -> 3 # as before\n");
  EXPECT_EQ(contentsOf("part"), "get level -> 2\n");
  EXPECT_EQ(run("-q device.ostrel new.session 2>&1").out, "");

  write("rounds.session", "up\nfor g in 1 2: single_set gain $g -> gain=1\n");
  const Outcome rounds = run("--update device.ostrel rounds.session broken.session 2>&1");
  EXPECT_EQ(countOf(rounds.out, "rounds.session:2: not updated, because its outcomes differ\n"),
            1U);
  EXPECT_EQ(rounds.status, 2);
  EXPECT_EQ(run("--update device.ostrel rounds.session").status, 1);
}

// Comments may hold what a terminal acts on.
TEST_F(OstrelPlay, PrintsNoControlCharacters) {
  write("bell.session", "get gain -> 1 # \x1b[31m\a\n");
  const Outcome outcome = run("-q device.ostrel bell.session 2>&1");
  EXPECT_EQ(outcome.out.find_first_of("\x1b\a"), std::string::npos);
  EXPECT_EQ(countOf(outcome.out, "-get gain -> 1 # ?[31m?\n"), 1U) << outcome.out;
}

// On a terminal without a session: history, completion and one device for all lines.
TEST_F(OstrelPlay, TalksOnATerminal) {
  write("input",
        "up\nstart a\na: set gain 5\nsingle_get gain\na: commit\nvalidate gain 55\ncomit\n"
        "for g in 1 2: validate gain $g\nsingle_set ga\t 7\nwhy level 9\n\x1b[A\n\x04");
  const Outcome outcome = runCommand("cd '" + folder_.path() +
                                     "' && env TERM=dumb script --quiet --return --command \"'" +
                                     OSTREL_PLAY + "' device.ostrel\" /dev/null < input");
  EXPECT_EQ(outcome.status, 0) << outcome.out;
  for (const char* const line :
       {"\r\ngain=3 level=2\r\n", "\r\n3\r\n", "\r\ngain=5\r\n", "\r\nfalse\r\n",
        "\r\ncolumn 1: there is no operation \"comit\"; did you mean \"commit\"?\r\n",
        "\r\ng=1: true\r\ng=2: true\r\n", "\r\ngain=7\r\n"}) {
    EXPECT_EQ(countOf(outcome.out, line), 1U) << line << outcome.out;
  }
  EXPECT_EQ(countOf(outcome.out, "  becomes 7: line 2, rangeValid { 0..(gain) }; gain is 7\r\n"),
            2U)
      << outcome.out;
}

TEST(OstrelPlayUsage, RefusesWhatItDoesNotUnderstand) {
  const struct {
    const char* arguments;
    const char* message;
  } cases[] = {
      {"", "no DEFINITIONS are given"},
      {"x </dev/null", "no SESSION is given; - is standard input"},
      {"- -", "standard input is given twice"},
      {"x - -", "standard input is given twice"},
      {"--update x -", "standard input cannot be updated"},
      {"-D MODEL x y", "-D MODEL: a value is missing; write NAME=VALUE"},
      {"-D =1 x y", "-D =1: a name is missing; write NAME=VALUE"},
      {"-D A=1 -D A=2 x y", "-D A=2: the constant \"A\" is given twice"},
      {"--format=junt x y",
       "--format is text, tap or junit, not \"junt\"; did you mean \"junit\"?"},
      {"--updat x y --fromat=tap", "there is no option \"--fromat\"; did you mean \"--format\"?"},
      {"--xyzzy x y", "there is no option \"--xyzzy\"; --help lists them"},
      {"--format= x y", "--format is text, tap or junit, not \"\""},
      {"--bus=session x y", "--bus is for --record"},
      {"--record --explore x", "--explore and --record exclude each other"},
      {"--record --bus=session --daemon=d x", "--daemon and --bus exclude each other"},
      {"--record --bus-suffix=s x", "a suffix goes with --bus"},
      {"--record --update x", "--record and --update exclude each other"},
      {"--record", "no DEFINITIONS are given"},
      {"--diff", "no DEFINITIONS are given"},
      {"--diff x", "--diff takes an OLD and a NEW text"},
      {"--diff x y z", "--diff takes an OLD and a NEW text"},
      {"--diff - -", "standard input is given twice"},
      {"--diff --record x y", "--diff and --record exclude each other"},
      {"--values=v x y", "--values is for --diff"},
      {"--diff --values= x y", "--values takes the name of a file"},
      {"--explore x y", "--explore takes no SESSION, but \"y\" is given"},
      {"--explore --update x", "--explore and --update exclude each other"},
      {"--explore --format=tap x", "--explore reports as text only"},
      {"--explore", "no DEFINITIONS are given"},
      {"--explore -D A x", "-D A: a value is missing; write NAME=VALUE"},
      {"--explore -D A=1,1 x", "-D A=1,1: the constant \"A\" has the value \"1\" twice"},
      {"--explore -D @none x", "cannot read none: No such file or directory"},
      {"--explore --seconds=0 x", "--seconds takes a whole number from 1, not \"0\""},
      {"--explore --seconds=1.5 x", "--seconds takes a whole number from 1, not \"1.5\""},
      {"--explore --steps=x x", "--steps takes a whole number from 1, not \"x\""},
      {"--explore --seed=-1 x", "--seed takes a whole number from 0, not \"-1\""},
      {"--explore -o '' x", "-o takes the name of a file"},
      {"--explore -o x x", "-o would replace x"},
      {"--coverage=x x y", "--coverage would replace x"},
      {"--coverage=y x y", "--coverage would replace y"},
      {"--steps=5 x y", "--steps is for --explore"},
      {"-o f x y", "-o is for --explore"},
      {"--coverage= x y", "--coverage takes the name of a file"},
      {"--fail-under= x y", "--fail-under takes a number from 0 to 100, not \"\""},
      {"--fail-under=100.1 x y", "--fail-under takes a number from 0 to 100, not \"100.1\""},
      {"--fail-under=-1 x y", "--fail-under takes a number from 0 to 100, not \"-1\""},
      {"--fail-under=nan x y", "--fail-under takes a number from 0 to 100, not \"nan\""},
      {"--fail-under=90% x y", "--fail-under takes a number from 0 to 100, not \"90%\""},
      {"--fail-under=1e1 x y", "--fail-under takes a number from 0 to 100, not \"1e1\""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.arguments);
    const Outcome outcome = runProgram(OSTREL_PLAY, std::string(c.arguments) + " 2>&1");
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.out, std::string("ostrel-play: ") + c.message +
                               "\nTry `ostrel-play --help' or `ostrel-play --usage' for more "
                               "information.\n");
  }
}

TEST(OstrelPlayUsage, DescribesItsOptionsAfterExamples) {
  const Outcome help = runProgram(OSTREL_PLAY, "--help 2>&1");
  EXPECT_EQ(help.status, 0);
  EXPECT_TRUE(help.out.starts_with("Usage: ostrel-play [OPTION...] DEFINITIONS [SESSION...]\n"))
      << help.out;
  EXPECT_LT(help.out.find("\nExamples:\n"), help.out.find("-D, --define=")) << help.out;
  for (const char* const name : {"-D, --define=NAME=VALUE",
                                 "--update",
                                 "--format=text|tap|junit",
                                 "--explore",
                                 "--seconds=N",
                                 "--steps=N",
                                 "--seed=N",
                                 "-o, --output=FILE",
                                 "--diff",
                                 "--values=FILE",
                                 "--coverage=FILE",
                                 "--coverage-summary",
                                 "--fail-under=PERCENT",
                                 "-q, --quiet",
                                 "--record[=FILE]",
                                 "--bus=ADDRESS",
                                 "--bus-suffix=STRING",
                                 "--path-suffix=STRING",
                                 "--daemon=PROGRAM",
                                 "-?, --help",
                                 "--usage",
                                 "-V, --version"}) {
    EXPECT_EQ(countOf(help.out, std::string("  ") + name), 1U) << name << help.out;
  }
  const Outcome version = runProgram(OSTREL_PLAY, "--version 2>&1");
  EXPECT_TRUE(version.out.starts_with("ostrel Built on ")) << version.out;
  EXPECT_EQ(runProgram(OSTREL_PLAY, "--help 2>&1 > /dev/full").out,
            "ostrel-play: cannot write: No space left on device\n");
}

}  // namespace
