// Runs the program ostrel-check and compares all that it prints.

#include <gtest/gtest.h>

#include <fstream>
#include <string>

#include "tests/harness/temp_dir.h"
#include "tests/support/run_program.h"

namespace {

Outcome run(const std::string& arguments) { return runProgram(OSTREL_CHECK, arguments); }

// A text that is right, one with a warning, and one that the daemon refuses.
const char* const RIGHT = "gain rw { rangeValid { 0..9 } default { 0 } }\n";
const char* const DOUBTFUL =
    "# check: allow octal\n"
    "gain rw { rangeValid { 0..9 } default { 0 } }\n";
const char* const WRONG = "gain rw { rangeValid { 0..9 }\n  default { } }\n";
const char* const WARNING =
    ":1:16: warning: there is no \"octal\" to allow in what follows [unused-allowance]\n"
    "# check: allow octal\n"
    "               ^~~~~\n";

// A directory with files of these texts, in which the program runs.
class OstrelCheck : public testing::Test {
 protected:
  OstrelCheck() {
    write("right.ostrel", RIGHT);
    write("doubtful.ostrel", DOUBTFUL);
    write("wrong.ostrel", WRONG);
  }

  void write(const std::string& name, const std::string& text) const {
    std::ofstream(folder_.path() + "/" + name) << text;
  }

  // In a shell, so that redirections are part of the arguments.
  [[nodiscard]] Outcome run(const std::string& arguments) const {
    return runCommand("cd '" + folder_.path() + "' && '" + OSTREL_CHECK + "' " + arguments);
  }

  TempDir folder_;
};

TEST_F(OstrelCheck, SaysNothingOfATextThatIsRight) {
  const Outcome outcome = run("right.ostrel 2>&1");
  EXPECT_EQ(outcome.out, "");
  EXPECT_EQ(outcome.status, 0);
}

TEST_F(OstrelCheck, ItsStatusSaysWhetherThereAreErrors) {
  const struct {
    const char* arguments;
    int status;
  } cases[] = {
      {"right.ostrel doubtful.ostrel", 0},
      {"wrong.ostrel", 1},
      {"wrong.ostrel right.ostrel", 1},
      {"right.ostrel wrong.ostrel", 1},
      {"-Werror doubtful.ostrel", 1},
      {"-Werror=unused-allowance doubtful.ostrel", 1},
      {"-Werror=octal doubtful.ostrel", 0},
      {"-Werror -Wno-unused-allowance doubtful.ostrel", 0},
      {"-q doubtful.ostrel", 0},
      {"-q -Werror doubtful.ostrel", 1},
      {"--format=json wrong.ostrel", 1},
      {"--format=sarif wrong.ostrel", 1},
      {"--format=json doubtful.ostrel", 0},
      {"missing.ostrel", 2},
      {"wrong.ostrel missing.ostrel", 2},
      {". ", 2},
      {"wrong.ostrel > /dev/full", 2},
      {"--format=json right.ostrel > /dev/full", 2},
      {"right.ostrel > /dev/full", 0},  // there is nothing to write
  };
  for (const auto& c : cases) {
    EXPECT_EQ(run(std::string(c.arguments) + " 2>/dev/null").status, c.status) << c.arguments;
  }
}

TEST_F(OstrelCheck, ReportsEachTextUnderItsName) {
  EXPECT_EQ(run("doubtful.ostrel right.ostrel ./doubtful.ostrel 2>&1").out,
            std::string("doubtful.ostrel") + WARNING + "./doubtful.ostrel" + WARNING);
}

TEST_F(OstrelCheck, ReadsStandardInput) {
  EXPECT_EQ(run("- 2>&1 < doubtful.ostrel").out, std::string("<stdin>") + WARNING);
  EXPECT_EQ(run("- right.ostrel 2>&1 < doubtful.ostrel").out, std::string("<stdin>") + WARNING);
  EXPECT_EQ(run("- 2>&1 < right.ostrel").out, "");
  EXPECT_EQ(run("- 2>&1 < /dev/null").out,
            "<stdin>: warning: the text has no definition, so the device has no parameters "
            "[nothing-defined]\n");
  const Outcome twice = run("- right.ostrel - 2>&1 < doubtful.ostrel");
  EXPECT_EQ(countOf(twice.out, "ostrel-check: standard input is given twice\n"), 1U) << twice.out;
  EXPECT_EQ(twice.status, 2);
  // Standard input that is closed is no empty text.
  EXPECT_EQ(run("- 2>&1 <&-").out, "ostrel-check: cannot read -: Bad file descriptor\n");
}

TEST_F(OstrelCheck, SaysWhatCannotBeReadAndReadsTheOthers) {
  const Outcome outcome = run("missing.ostrel . doubtful.ostrel 2>&1 >out; echo $?; cat out");
  EXPECT_EQ(outcome.out,
            "ostrel-check: cannot read missing.ostrel: No such file or directory\n"
            "ostrel-check: cannot read .: Is a directory\n"
            "2\n"
            "doubtful.ostrel" +
                std::string(WARNING));
}

TEST_F(OstrelCheck, SaysThatItCannotWrite) {
  EXPECT_EQ(run("doubtful.ostrel 2>&1 >/dev/full").out,
            "ostrel-check: cannot write: No space left on device\n");
  EXPECT_EQ(run("--list-codes 2>&1 >/dev/full").out,
            "ostrel-check: cannot write: No space left on device\n");
  for (const char* const option : {"--explain octal", "--help", "--usage", "--version"}) {
    EXPECT_EQ(run(std::string(option) + " >/dev/full 2>&1").status, 2) << option;
  }
}

TEST_F(OstrelCheck, LeavesOutWhatIsNotAskedFor) {
  EXPECT_EQ(run("-Wno-unused-allowance doubtful.ostrel 2>&1").out, "");
  EXPECT_EQ(run("-Wno-unused-allowance -W unused-allowance doubtful.ostrel 2>&1").out,
            std::string("doubtful.ostrel") + WARNING);
  EXPECT_EQ(run("--quiet doubtful.ostrel 2>&1").out, "");
  EXPECT_EQ(countOf(run("--quiet -Werror doubtful.ostrel 2>&1").out, ": error: "), 1U);
  EXPECT_EQ(countOf(run("--quiet --format=json doubtful.ostrel 2>&1").out, "\"code\""), 0U);
  EXPECT_EQ(countOf(run("--format=json doubtful.ostrel 2>&1").out, "\"code\""), 1U);
}

TEST_F(OstrelCheck, WritesOneDocumentForAllTexts) {
  EXPECT_EQ(run("--format=json right.ostrel - 2>&1 <right.ostrel").out,
            R"({
  "version": 1,
  "files": [
    {
      "name": "right.ostrel",
      "findings": [],
      "allowed": [],
      "undecided": []
    },
    {
      "name": "<stdin>",
      "findings": [],
      "allowed": [],
      "undecided": []
    }
  ]
}
)");
  const Outcome sarif = run("--format=sarif doubtful.ostrel wrong.ostrel 2>&1");
  EXPECT_EQ(countOf(sarif.out, "\"version\": \"2.1.0\""), 1U);
  EXPECT_EQ(countOf(sarif.out, "\"uri\": \"doubtful.ostrel\""), 1U);
  EXPECT_GE(countOf(sarif.out, "\"uri\": \"wrong.ostrel\""), 1U);
}

TEST_F(OstrelCheck, HasColoursOnATerminalOnly) {
  const auto onTerminal = [this](const std::string& environment) {
    return runCommand("cd '" + folder_.path() + "' && env -u NO_COLOR TERM=xterm " + environment +
                      " script --quiet --return --command \"'" + OSTREL_CHECK +
                      "' doubtful.ostrel\" /dev/null </dev/null")
        .out;
  };
  EXPECT_EQ(countOf(onTerminal(""), "\33[1;35mwarning:\33[m"), 1U);
  EXPECT_EQ(countOf(onTerminal("NO_COLOR="), "\33[1;35mwarning:\33[m"), 1U);  // as if not set
  EXPECT_EQ(countOf(onTerminal("NO_COLOR=1"), "\33"), 0U);
  EXPECT_EQ(countOf(onTerminal("TERM=dumb"), "\33"), 0U);
  EXPECT_EQ(countOf(run("doubtful.ostrel").out, "\33"), 0U);
}

TEST_F(OstrelCheck, GivesConstantsToTheText) {
  write("model.ostrel", "gain rw { rangeValid { 0..(TOP) } ctrlValid (MODEL == \"pro\") }\n");
  write("constants", "# Of all models.\nTOP=9\n\nMODEL=basic,pro\n");
  write("half", "TOP\n");
  const struct {
    const char* arguments;
    int status;
  } cases[] = {
      {"", 1},
      {"-D TOP=9", 1},
      {"-D TOP=9 -D MODEL=pro", 0},
      {"-DTOP=9,99 --define=MODEL=basic,pro", 0},
      {"-D @constants", 0},
      {"-D @half", 2},
      {"-D @missing", 2},
      {"-D @.", 2},
      {"-D @constants -D TOP=9", 2},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(run(std::string(c.arguments) + " model.ostrel 2>/dev/null >&2").status, c.status)
        << c.arguments;
  }
}

TEST_F(OstrelCheck, NamesAVariantWhereItMatters) {
  write(
      "model.ostrel",
      "gain rw { rangeValid { 0..(TOP) } default { 0 } rangeValid (MODEL == \"pro\") { 9..0 } }\n");
  const Outcome some = run("-D TOP=5,9 -D MODEL=basic,pro model.ostrel 2>&1");
  EXPECT_TRUE(some.out.ends_with("\nnote: with MODEL=pro\n")) << some.out;
  EXPECT_EQ(countOf(some.out, ": error: "), 1U) << some.out;
  const Outcome all = run("-D TOP=5,9 -D MODEL=pro model.ostrel 2>&1");
  EXPECT_EQ(countOf(all.out, "note: with"), 0U) << all.out;
  EXPECT_EQ(countOf(all.out, ": error: "), 1U) << all.out;
}

// Nobody knows what an allowance would silence where its code was not asked for.
TEST_F(OstrelCheck, ReportsAnIdleAllowanceOnlyOfWhatWasAsked) {
  const struct {
    const char* options;
    const char* code;
    const char* definition;
    size_t reports;
  } cases[] = {
      {"", "never-true", "gain rw { }", 1},
      {"--no-proofs", "never-true", "gain rw { }", 0},
      {"--no-proofs", "octal", "gain rw { }", 1},
      // The definitions were not built, or only in one of the variants.
      {"", "octal", "gain rw { rangeValid { 9..0 } }", 0},
      {"-D TOP=0,9", "octal", "gain rw { rangeValid { 1..(TOP) } }", 0},
      {"-D TOP=1,9", "octal", "gain rw { rangeValid { 1..(TOP) } }", 1},
      {"", "constant-condition", "gain rw { rangeValid { 9..0 } }", 1},
      // They were not even read.
      {"", "constant-condition", "gain rw { rangeValid { 9-0 } }", 0},
      {"", "long-line", "gain rw { rangeValid { 9-0 } }", 1},
  };
  for (const auto& c : cases) {
    write("text.ostrel", std::string("# check: allow ") + c.code + "\n" + c.definition + "\n");
    const Outcome outcome = run(std::string(c.options) + " text.ostrel 2>&1");
    EXPECT_EQ(countOf(outcome.out, "[unused-allowance]"), c.reports) << outcome.out;
  }
}

TEST_F(OstrelCheck, FindsTheSameWithAnyNumberOfJobs) {
  const std::string constants = " -D @" EXAMPLES "/frame-synchroniser.constants ";
  const char* const mistakes[] = {"s/ / /",
                                  "s/CHANNELS > 1/CHANNELS > 3/; s/default { 0 }/default { 7 }/"};
  for (const char* const mistake : mistakes) {
    const std::string text =
        std::string("sed '") + mistake + "' " EXAMPLES "/frame-synchroniser.ostrel > device.ostrel";
    ASSERT_EQ(runCommand("cd '" + folder_.path() + "' && " + text).status, 0);
    const Outcome one = run("--verbose --jobs=1" + constants + "device.ostrel 2>&1");
    EXPECT_EQ(one.out.empty(), mistake == mistakes[0]) << one.out;
    for (const char* const jobs : {"2", "5", "4294967295"}) {
      const Outcome several =
          run(std::string("--verbose --jobs=") + jobs + constants + "device.ostrel 2>&1");
      EXPECT_EQ(several.out, one.out) << jobs;
      EXPECT_EQ(several.status, one.status) << jobs;
    }
  }
}

TEST_F(OstrelCheck, SaysThatAJobCannotWorkAndChecksTheOthers) {
  const Outcome outcome = runCommand("cd '" + folder_.path() + "' && ulimit -n 20 && '" +
                                     OSTREL_CHECK + "' --jobs=60 right.ostrel wrong.ostrel 2>&1");
  EXPECT_EQ(outcome.out,
            "ostrel-check: cannot check right.ostrel: cannot make a pipe: Too many open files\n"
            "ostrel-check: cannot check wrong.ostrel: cannot make a pipe: Too many open files\n");
  EXPECT_EQ(outcome.status, 2);
}

TEST(OstrelCheckUsage, RefusesWhatItDoesNotUnderstand) {
  const struct {
    const char* arguments;
    const char* message;
  } cases[] = {
      {"", "no FILE is given; - is standard input"},
      {"-D MODEL x", "-D MODEL: a value is missing; write NAME=VALUE"},
      {"-D =1 x", "-D =1: a name is missing; write NAME=VALUE"},
      {"-D A=1 -D A=2 x",
       "-D A=2: the constant \"A\" is given twice; several values are written NAME=VALUE,VALUE"},
      {"-D A=1,1 x", "-D A=1,1: the constant \"A\" has the value \"1\" twice"},
      {"-D A=$(seq -s, 65) -D B=$(seq -s, 65) x",
       "the constants have more than 4096 combinations; check some of their values at a time"},
      {"-D @/nonexistent x", "cannot read /nonexistent: No such file or directory"},
      {"-W octl x", "there is no code \"octl\"; did you mean \"octal\"?"},
      {"-Wno-octl x", "there is no code \"octl\"; did you mean \"octal\"?"},
      {"-Werror=octl x", "there is no code \"octl\"; did you mean \"octal\"?"},
      {"-Wno-syntax x", "the daemon refuses a text with \"syntax\", so it cannot be switched off"},
      {"--explain octl", "there is no code \"octl\"; did you mean \"octal\"?"},
      {"-Wall x", "there is no code \"all\"; all codes are reported without it"},
      {"--explain octal x", "--explain takes no FILE, but \"x\" is given"},
      {"x --list-codes", "--list-codes takes no FILE, but \"x\" is given"},
      {"--explain octal --explain cycle", "one --explain or --list-codes is answered at a time"},
      {"--noproofs x", "there is no option \"--noproofs\"; did you mean \"--no-proofs\"?"},
      {"--max-tiem=3 x", "there is no option \"--max-tiem\"; did you mean \"--max-time\"?"},
      {"x --zzz", "there is no option \"--zzz\"; --help lists them"},
      {"--explain xyz", "there is no code \"xyz\"; --list-codes lists them"},
      {"--format=jsn x", "--format is text, json or sarif, not \"jsn\"; did you mean \"json\"?"},
      {"--format= x", "--format is text, json or sarif, not \"\""},
      {"--max-time 0 x", "--max-time takes a whole number from 1, not \"0\""},
      {"--max-time 1.5 x", "--max-time takes a whole number from 1, not \"1.5\""},
      {"--jobs=-1 x", "--jobs takes a whole number from 1, not \"-1\""},
      {"--jobs=4294967296 x", "--jobs takes a whole number from 1, not \"4294967296\""},
      {"--jobs= x", "--jobs takes a whole number from 1, not \"\""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.arguments);
    const Outcome outcome = run(std::string(c.arguments) + " 2>&1");
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.out, std::string("ostrel-check: ") + c.message +
                               "\nTry `ostrel-check --help' or `ostrel-check --usage' for more "
                               "information.\n");
  }
  EXPECT_EQ(run("-x - 2>/dev/null").status, 2);
  EXPECT_EQ(run("--explain 2>/dev/null").status, 2);
}

TEST(OstrelCheckUsage, AcceptsLimitsForProofs) {
  EXPECT_EQ(run("--no-proofs --max-time=1 --jobs=2 -j 4294967295 --verbose --show-allowed - "
                "2>&1 </dev/null")
                .status,
            0);
}

TEST(OstrelCheckUsage, KnowsOptionsFromValuesAndFiles) {
  EXPECT_EQ(run("-D --what=1 --no-pro - 2>/dev/null </dev/null").status, 0);
  EXPECT_EQ(run("-- --what 2>&1").out,
            "ostrel-check: cannot read --what: No such file or directory\n");
}

TEST(OstrelCheckUsage, ShowsItsOptionsAsTheyAreWritten) {
  const Outcome usage = run("--usage 2>&1");
  EXPECT_EQ(usage.status, 0);
  EXPECT_TRUE(usage.out.starts_with("Usage: ostrel-check [-")) << usage.out;
  EXPECT_EQ(countOf(usage.out, "[--list-codes]"), 1U) << usage.out;
  EXPECT_EQ(countOf(usage.out, "---"), 0U) << usage.out;
}

TEST(OstrelCheckUsage, DescribesItsOptionsAfterExamples) {
  for (const char* const option : {"--help", "-?"}) {
    const Outcome help = run(std::string(option) + " 2>&1");
    EXPECT_EQ(help.status, 0);
    EXPECT_TRUE(help.out.starts_with("Usage: ostrel-check [OPTION...] FILE...\n")) << help.out;
    EXPECT_LT(help.out.find("\nExamples:\n"), help.out.find("-D, --define=")) << help.out;
    for (const char* const name :
         {"-D @FILE", "-W, --warn=CODE", "-Wno-CODE", "-Werror[=CODE]", "--no-proofs",
          "--max-time=", "-j, --jobs=N", "--format=text|json|sarif", "-q, --quiet", "-v, --verbose",
          "--show-allowed", "--explain=CODE", "--list-codes", "-V, --version"}) {
      EXPECT_EQ(countOf(help.out, std::string("  ") + name), 1U) << name << help.out;
    }
  }
}

TEST(OstrelCheckUsage, ListsAndExplainsCodes) {
  const Outcome list = run("--list-codes 2>&1");
  EXPECT_EQ(list.status, 0);
  EXPECT_EQ(
      countOf(list.out, "\noctal                   warning  a number with a leading 0 is octal\n"),
      1U)
      << list.out;
  EXPECT_EQ(run("--explain octal 2>&1").out,
            "octal (warning): a number with a leading 0 is octal\n"
            "\n"
            "A leading 0 makes a number octal: 010 is 8. Leave it out, or write 8. The 000 of\n"
            "1,000 is an item of its own: write 1000.\n"
            "\n"
            "Wrong:\n"
            "    gain rw { rangeValid { 0..010 } default { 0 } }\n"
            "Right:\n"
            "    gain rw { rangeValid { 0..10 } default { 0 } }\n");
}

TEST(OstrelCheckUsage, HasTheVersionOfTheDaemon) {
  for (const char* const option : {"--version", "-V"}) {
    const Outcome version = run(std::string(option) + " 2>&1");
    EXPECT_EQ(version.status, 0);
    EXPECT_TRUE(version.out.starts_with("ostrel Built on ")) << version.out;
    EXPECT_EQ(version.out, runProgram(OSTREL, option).out);
  }
}

}  // namespace
