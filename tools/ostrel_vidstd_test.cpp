// Runs the program ostrel-vidstd and compares all that it prints.

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "tests/support/run_program.h"

namespace {

Outcome run(const std::string& arguments) { return runProgram(OSTREL_VIDSTD, arguments); }

const char* const DESCRIPTION_625P = R"(625p/50
864 samples x 625 lines progressive
Pixel aspect ratio = 16:15
Frame rate = 50Hz
Sampling frequency = 27.00MHz
Centre: between samples 359 and 360
Centre: between lines 332 and 333
Blanking: line 1 to 44 and 621 to 625
Production aperture
720 samples x 576 lines
Sample range: 0 to 719
Line range: 45 to 620
Aspect ratio = 4:3
Centre: between samples 359 and 360
Centre: between lines 332 and 333
Clean aperture not defined
Digital timing references
Frame start: 1
Blanking: V=1: 621, V=0: 45
Switch point: 6
)";

const char* const NO_STANDARD_XYZ =
    "ostrel-vidstd: there is no video standard \"xyz\"; without arguments, all names are listed\n"
    "ostrel-vidstd: as a value, \"xyz\" selects nothing\n";

TEST(OstrelVidstd, ListsEachNameOnceInTableOrder) {
  const Outcome list = run("2>&1");
  EXPECT_EQ(list.status, 0);
  EXPECT_EQ(std::count(list.out.begin(), list.out.end(), '\n'), 74);  // of 78 rows
  EXPECT_TRUE(list.out.starts_with("1080p/60.00\n1080p/59.94\n1080p/50\n")) << list.out;
  EXPECT_TRUE(list.out.ends_with("\n3G/2048x1080p/24.00sF\n3G/2048x1080p/23.98sF\n")) << list.out;
  EXPECT_EQ(countOf(list.out, "\n720p/23.98\n625i/50\n625p/50\n525i/59.94\n480p/59.94\n"), 1U);
}

TEST(OstrelVidstd, DescribesAStandard) {
  const Outcome described = run("625p/50 2>&1");
  EXPECT_EQ(described.status, 0);
  EXPECT_EQ(described.out, DESCRIPTION_625P);
}

TEST(OstrelVidstd, DescribesSeveralInTheOrderOfTheArguments) {
  const Outcome described = run("720p/50 625p/50 1080p/25sF 2>/dev/null");
  EXPECT_EQ(described.status, 0);
  EXPECT_TRUE(described.out.starts_with("720p/50\n1980 samples x 750 lines progressive\n"));
  EXPECT_EQ(countOf(described.out, std::string("\n\n") + DESCRIPTION_625P + "\n1080p/25sF\n"), 1U);
  EXPECT_EQ(countOf(described.out, "\n\n"), 2U);
}

TEST(OstrelVidstd, DescribesEveryRowOfAName) {
  const Outcome described = run("525i/59.94 2>&1");
  EXPECT_EQ(described.status, 0);
  EXPECT_EQ(countOf("\n\n" + described.out, "\n\n525i/59.94\n858 samples x 525 lines interlaced\n"),
            4U);
  for (const char* const lines : {"487", "486", "480"}) {
    EXPECT_NE(described.out.find(std::string("720 samples x ") + lines + " lines"),
              std::string::npos);
  }
}

TEST(OstrelVidstd, DescribesTheRowOfTheFullNameWhereAnEarlierOneBeginsIt) {
  const Outcome described = run("1080p/25sF 2>/dev/null");
  EXPECT_TRUE(described.out.starts_with("1080p/25sF\n2640 samples x 1125 lines p/sF\n"));
}

TEST(OstrelVidstd, RefusesUnknownNamesAndDescribesTheOthers) {
  EXPECT_EQ(run("xyz 2>&1 >/dev/null").out, NO_STANDARD_XYZ);
  EXPECT_EQ(run("xyz 2>/dev/null").out, "");
  EXPECT_EQ(run("xyz 2>/dev/null").status, 1);

  const Outcome mixed = run("xyz 625p/50 '' 2>/dev/null");
  EXPECT_EQ(mixed.out, DESCRIPTION_625P);
  EXPECT_EQ(mixed.status, 1);

  for (const char* const name : {"625p/50x", "625p", "1920x1080/60/P", "-- --help", "''"}) {
    SCOPED_TRACE(name);
    EXPECT_EQ(run(std::string(name) + " 2>/dev/null").status, 1);
  }
}

TEST(OstrelVidstd, TellsWhatASpellingSelects) {
  const struct {
    const char* spelling;
    const char* answer;
    int status;
  } cases[] = {
      {"720p/60.00", "the standard 720p/60.00", 0},
      {"720p/60.00 wide", "the standard 720p/60.00", 0},
      {"1080p/500", "the standard 1080p/50", 0},
      {"1080p/25sF", "the standard 1080p/25", 0},  // listed before its own row
      {"625i/50", "the standard 625i/50", 0},
      {"525i/59.94 - RP187(2004)", "the standard 525i/59.94", 0},  // also a format's whole name
      {"1920x1080/60/P wide", "the picture format 1920x1080/60/P", 0},
      {"720p/60", "nothing; names that begin with it: 720p/60.00", 1},
      {"720p/2", "nothing; names that begin with it: 720p/29.97, 720p/25, 720p/24.00, 720p/23.98",
       1},
      // Those of segmented frames begin with it, too, but select others.
      {"1080p/2",
       "nothing; names that begin with it: 1080p/29.97, 1080p/25, 1080p/24.00, "
       "1080p/23.98",
       1},
      {"525i", "nothing; names that begin with it: 525i/59.94", 1},
      {"1920x1035", "nothing; names that begin with it: 1920x1035/60/I, 1920x1035/59.94/I", 1},
      {"720P/60.00", "nothing", 1},
      {" 720p/50", "nothing", 1},
      {"", "nothing", 1},  // every name begins with it
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.spelling);
    const std::string quoted = std::string("'") + c.spelling + "'";
    const Outcome told = run("--select " + quoted + " 2>&1");
    EXPECT_EQ(told.out, std::string("\"") + c.spelling + "\" selects " + c.answer + "\n");
    EXPECT_EQ(told.status, c.status);
  }
}

TEST(OstrelVidstd, TellsWhatSeveralSpellingsSelect) {
  const Outcome told = run("720p/60 -s 720p/50 xyz 2>&1");
  EXPECT_EQ(told.out,
            "\"720p/60\" selects nothing; names that begin with it: 720p/60.00\n"
            "\"720p/50\" selects the standard 720p/50\n"
            "\"xyz\" selects nothing\n");
  EXPECT_EQ(told.status, 1);

  EXPECT_EQ(run("--select 2>/dev/null").out, "");
  EXPECT_EQ(run("--select 2>/dev/null").status, 64);
}

TEST(OstrelVidstd, SaysWhereANameSelectsSomethingElse) {
  EXPECT_EQ(run("1080p/25sF 2>&1 >/dev/null").out,
            "ostrel-vidstd: as a value, \"1080p/25sF\" selects the standard 1080p/25\n");
  EXPECT_EQ(run("1080p/25sF 2>&1 >/dev/null").status, 0);
  EXPECT_EQ(run("720p/60 2>&1 >/dev/null").out,
            "ostrel-vidstd: there is no video standard \"720p/60\"; without arguments, all names "
            "are listed\n"
            "ostrel-vidstd: as a value, \"720p/60\" selects nothing; names that begin with it: "
            "720p/60.00\n");
  // The first of its rows is what it selects.
  EXPECT_EQ(run("625i/50 2>&1 >/dev/null").out, "");
}

TEST(OstrelVidstd, DescribesItsOptions) {
  for (const char* const option : {"--help", "-?", "--help 720p/50"}) {
    SCOPED_TRACE(option);
    const Outcome help = run(std::string(option) + " 2>&1");
    EXPECT_EQ(help.status, 0);
    EXPECT_TRUE(help.out.starts_with("Usage: ostrel-vidstd [OPTION...] [NAME...]\n")) << help.out;
    EXPECT_EQ(countOf(help.out, "-s, --select"), 1U);
    EXPECT_EQ(countOf(help.out, "-V, --version"), 1U);
  }
  const Outcome usage = run("--usage 2>&1");
  EXPECT_EQ(usage.status, 0);
  EXPECT_TRUE(usage.out.starts_with("Usage: ostrel-vidstd [-s?V] ")) << usage.out;
}

TEST(OstrelVidstd, HasTheVersionOfTheDaemon) {
  for (const char* const option : {"--version", "-V"}) {
    SCOPED_TRACE(option);
    const Outcome version = run(std::string(option) + " 2>&1");
    EXPECT_EQ(version.status, 0);
    EXPECT_TRUE(version.out.starts_with("ostrel Built on ")) << version.out;
    EXPECT_EQ(version.out, runProgram(OSTREL, option).out);
  }
}

TEST(OstrelVidstd, RefusesUnknownOptions) {
  const Outcome unknown = run("--what 2>&1 >/dev/null");
  EXPECT_EQ(unknown.status, 64);  // as the daemon
  EXPECT_EQ(countOf(unknown.out, "unrecognized option '--what'\n"), 1U) << unknown.out;
}

TEST(OstrelVidstd, ReportsThatItCannotWrite) {
  const Outcome full = run("2>&1 >/dev/full");
  EXPECT_EQ(full.out, "ostrel-vidstd: cannot write: No space left on device\n");
  EXPECT_EQ(full.status, 1);
}

}  // namespace
