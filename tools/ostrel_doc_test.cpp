// Runs the program ostrel-doc and compares what it prints and writes.

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>

#include "tests/harness/temp_dir.h"
#include "tests/support/run_program.h"

namespace {

const char* const DEVICE =
    "# The gain.\n"
    "gain rw { rangeValid { 0..9 } }\n"
    "level rw { rangeValid { 0..(gain) } }\n"
    "trim rw { }\n"
    "# All channels.\n"
    "channel index { rangeValid { 1..(CHANNELS) } }\n";

// A directory with a definition text, in which the program runs.
class OstrelDoc : public testing::Test {
 protected:
  OstrelDoc() { write("device.ostrel", DEVICE); }

  void write(const std::string& name, const std::string& text) const {
    std::ofstream(folder_.path() + "/" + name) << text;
  }
  [[nodiscard]] std::string contentsOf(const std::string& name) const {
    std::ifstream file(folder_.path() + "/" + name);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  }
  // In a shell, so that redirections are part of the arguments.
  [[nodiscard]] Outcome run(const std::string& arguments) const {
    return runCommand("cd '" + folder_.path() + "' && '" + OSTREL_DOC + "' " + arguments);
  }

  TempDir folder_;
};

TEST_F(OstrelDoc, ItsStatusSaysWhetherItIsDone) {
  write("described.ostrel", "# It.\na rw { }\n");
  write("broken.ostrel", "a rw { rangeValid { 9..0 } }\n");
  const struct {
    const char* arguments;
    int status;
  } cases[] = {
      {"-D CHANNELS=2 device.ostrel", 0},
      {"-D CHANNELS=2 -o out device.ostrel", 0},
      {"-D CHANNELS=2 - < device.ostrel", 0},
      {"--check described.ostrel", 0},
      {"-D CHANNELS=2 --check device.ostrel", 1},
      {"device.ostrel", 2},
      {"broken.ostrel", 2},
      {"none.ostrel", 2},
      {".", 2},
      {"described.ostrel > /dev/full", 2},
      {"-D CHANNELS=2 --check device.ostrel > /dev/full", 2},
      {"-o described.ostrel described.ostrel", 2},
      {"-o /dev/null/x described.ostrel", 2},
      {"--format=pdf described.ostrel", 2},
      {"described.ostrel described.ostrel", 2},
      {"", 2},
      {"-D CHANNELS device.ostrel", 2},
      {"-D A=1 -D A=2 described.ostrel", 2},
      {"--titel=x described.ostrel", 2},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(run("2>/dev/null >log " + std::string(c.arguments)).status, c.status) << c.arguments;
  }
}

TEST_F(OstrelDoc, ListsWhatHasNoDescription) {
  EXPECT_EQ(
      run("--check -D CHANNELS=2 device.ostrel 2>&1").out,
      "device.ostrel:3: \"level\" has no description; write comment lines directly above it\n"
      "device.ostrel:4: \"trim\" has no description; write comment lines directly above it\n");
  EXPECT_TRUE(run("--check -D CHANNELS=2 - < device.ostrel").out.starts_with("<stdin>:3: "));
}

TEST_F(OstrelDoc, WritesAFileOfEachForm) {
  for (const char* const form : {"html", "md", "json"}) {
    const std::string options = std::string("-D CHANNELS=2 --title='A & B' --format=") + form;
    EXPECT_EQ(run(options + " -o new/directory device.ostrel 2>&1").out, "");
    const std::string text = contentsOf(std::string("new/directory/index.") + form);
    EXPECT_EQ(run(options + " device.ostrel 2>&1").out, text) << form;
    EXPECT_FALSE(text.empty());
  }
  EXPECT_TRUE(contentsOf("new/directory/index.html").starts_with("<!DOCTYPE html>\n"));
  EXPECT_EQ(countOf(contentsOf("new/directory/index.html"), "<title>A &amp; B</title>"), 1U);
  EXPECT_TRUE(contentsOf("new/directory/index.md").starts_with("# A \\& B\n"));
  EXPECT_EQ(countOf(contentsOf("new/directory/index.json"), "\"title\": \"A & B\""), 1U);
}

TEST_F(OstrelDoc, TakesTheTitleFromTheFile) {
  EXPECT_EQ(countOf(run("-D CHANNELS=2 ./device.ostrel").out, "<title>device</title>"), 1U);
  EXPECT_EQ(countOf(run("-D CHANNELS=2 - < device.ostrel").out, "<title>Device</title>"), 1U);
}

TEST_F(OstrelDoc, SaysWhatIsWrongWithAText) {
  EXPECT_EQ(
      run("device.ostrel 2>&1 >/dev/null").out,
      "device.ostrel:6:34: error: there is no \"CHANNELS\": as a constant of the command line "
      "it is given by -D CHANNELS=... [missing-constant]\n"
      "channel index { rangeValid { 1..(CHANNELS) } }\n"
      "                                 ^~~~~~~~\n");
  EXPECT_EQ(run("-o out none.ostrel 2>&1").out,
            "ostrel-doc: cannot read none.ostrel: No such file or directory\n");
}

TEST_F(OstrelDoc, SaysWhyItCannotDraw) {
  const std::string options = "-D CHANNELS=2 device.ostrel";
  const std::string program = std::string("PATH=/nowhere '") + OSTREL_DOC + "' ";
  const std::string folder = "cd '" + folder_.path() + "' && ";
  const Outcome outcome = runCommand(folder + program + options + " 2>&1");
  EXPECT_EQ(outcome.status, 2);
  EXPECT_TRUE(outcome.out.starts_with("ostrel-doc: cannot draw the picture: ")) << outcome.out;
  EXPECT_TRUE(outcome.out.ends_with("; install graphviz, or give --no-picture\n")) << outcome.out;
  const std::string elsewhere = std::string("TMPDIR=/nowhere '") + OSTREL_DOC + "' ";
  EXPECT_EQ(runCommand(folder + elsewhere + options + " 2>&1").out,
            "ostrel-doc: cannot draw the picture: a temporary file cannot be written to /nowhere; "
            "set TMPDIR to another directory, or give --no-picture\n");
  EXPECT_EQ(runCommand(folder + program + "--no-picture " + options + " >/dev/null").status, 0);
}

TEST_F(OstrelDoc, ProposesTheRightOption) {
  EXPECT_EQ(countOf(run("--titel=x device.ostrel 2>&1").out, "did you mean \"--title\"?"), 1U);
  EXPECT_EQ(countOf(run("--format=htm device.ostrel 2>&1").out, "--format is html, md or json"),
            1U);
}

}  // namespace
