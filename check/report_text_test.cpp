#include "check/report_text.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace {

const char* const TEXT =
    "gain rw {\n"
    "\trangeValid\t{ 0..010 }\n"
    "  default { \"h\u00F6he\u4E00\" 7 }\r\n"
    "  ctrlRO (\x1B[31m\xFF = 9)\n"
    "}\n";

std::string written(CheckReport report, const TextStyle& style = {}) {
  const FileReport file = {std::make_unique<SourceText>("a.ostrel", TEXT), std::move(report)};
  char* text = nullptr;
  size_t size = 0;
  std::FILE* const out = open_memstream(&text, &size);
  writeText(file, style, out);
  EXPECT_EQ(std::fclose(out), 0);
  std::string result(text, size);
  std::free(text);
  return result;
}

TEST(ReportText, IsEmptyWhereNothingWasFound) { EXPECT_EQ(written({}), ""); }

TEST(ReportText, UnderlinesWhatIsMeant) {
  const struct {
    TextPlace at;
    const char* shown;
  } cases[] = {
      {{1, 0, 4}, "a.ostrel:1:1: warning: x [octal]\ngain rw {\n^~~~\n"},
      // Tabs stay, so that the mark is below its character.
      {{2, 17, 3},
       "a.ostrel:2:18: warning: x [octal]\n\trangeValid\t{ 0..010 }\n\t          \t     ^~~\n"},
      // Columns are bytes; characters take one column or two. The carriage return is not shown.
      {{3, 13, 6},
       "a.ostrel:3:14: warning: x [octal]\n  default { \"h\u00F6he\u4E00\" 7 }\n             "
       "^~~~~~\n"},
      {{3, 21, 1},
       "a.ostrel:3:22: warning: x [octal]\n  default { \"h\u00F6he\u4E00\" 7 }\n                   "
       "^\n"},
      // What would steer the terminal is shown as a picture, what is no character as U+FFFD.
      {{4, 17, 1},
       "a.ostrel:4:18: warning: x [octal]\n  ctrlRO (\u241B[31m\uFFFD = 9)\n                 ^\n"},
      // A place without extent, one behind the line, one that goes on behind it.
      {{5, 0, 0}, "a.ostrel:5:1: warning: x [octal]\n}\n^\n"},
      {{5, 1, 0}, "a.ostrel:5:2: warning: x [octal]\n}\n ^\n"},
      {{1, 8, 90}, "a.ostrel:1:9: warning: x [octal]\ngain rw {\n        ^\n"},
      {{1, 90, 1}, "a.ostrel:1:91: warning: x [octal]\n"},
      // The end of the text, and no place at all.
      {{6, 0, 0}, "a.ostrel:6:1: warning: x [octal]\n"},
      {{}, "a.ostrel: warning: x [octal]\n"},
  };
  for (const auto& c : cases) EXPECT_EQ(written({{{"octal", c.at, "x"}}, {}, {}}), c.shown);
}

TEST(ReportText, EndsLongLines) {
  const std::string blanks(1023, ' ');
  CheckReport report;
  report.findings = {{"octal", {1, 1023, 1}, "x"}, {"octal", {1, 1024, 1}, "y"}};
  const FileReport file = {std::make_unique<SourceText>("a", blanks + "zz\n"), std::move(report)};
  char* text = nullptr;
  size_t size = 0;
  std::FILE* const out = open_memstream(&text, &size);
  writeText(file, {}, out);
  EXPECT_EQ(std::fclose(out), 0);
  EXPECT_EQ(std::string(text, size), "a:1:1024: warning: x [octal]\n" + blanks + "...\n" + blanks +
                                         "^\na:1:1025: warning: y [octal]\n");
  std::free(text);
}

TEST(ReportText, AddsWhatExplainsAFinding) {
  Finding finding = {"undefined-name", {1, 0, 4}, "there is no \"gain\""};
  finding.related = {{{5, 0, 1}, "the definition ends here"}, {{}, "see the manual"}};
  finding.proposal = Proposal{{1, 0, 4}, "grain"};
  finding.witness = {{"a", "1"}, {"title", ""}, {"mode", "1080i/50 wide"}};
  finding.variant = "MODEL=pro";
  EXPECT_EQ(written({{finding}, {}, {}}),
            "a.ostrel:1:1: error: there is no \"gain\" [undefined-name]\n"
            "gain rw {\n"
            "^~~~\n"
            "a.ostrel:5:1: note: the definition ends here\n"
            "}\n"
            "^\n"
            "a.ostrel: note: see the manual\n"
            "a.ostrel:1:1: note: did you mean \"grain\"?\n"
            "note: for example with a=1 title=\"\" mode=\"1080i/50 wide\"\n"
            "note: with MODEL=pro\n");
}

TEST(ReportText, SaysWhatAProposalChanges) {
  const struct {
    Proposal proposal;
    const char* shown;
  } cases[] = {
      {{{1, 5, 2}, "ro"}, "a.ostrel:1:6: note: did you mean \"ro\"?\ngain rw {\n     ^~\n"},
      {{{1, 0, 4}, "hue"}, "a.ostrel:1:1: note: did you mean \"hue\"?\n"},  // the line is shown
      {{{1, 0, 4}, "\"gain\""}, "a.ostrel:1:1: note: did you mean \"gain\"?\n"},
      {{{1, 0, 4}, "{ gain }"}, "a.ostrel:1:1: note: did you mean { gain }?\n"},
      {{{1, 0, 4}, "(gain)"}, "a.ostrel:1:1: note: did you mean (gain)?\n"},
      {{{1, 0, 4}, "5"}, "a.ostrel:1:1: note: did you mean 5?\n"},
      {{{5, 1, 0}, "}"}, "a.ostrel:5:2: note: add \"}\"\n}\n ^\n"},
      {{{1, 5, 2}, ""}, "a.ostrel:1:6: note: leave out \"rw\"\ngain rw {\n     ^~\n"},
      {{{}, "-D MODEL=..."}, "a.ostrel: note: add \"-D MODEL=...\"\n"},
  };
  for (const auto& c : cases) {
    Finding finding = {"octal", {1, 0, 4}, "x"};
    finding.proposal = c.proposal;
    EXPECT_EQ(written({{finding}, {}, {}}),
              std::string("a.ostrel:1:1: warning: x [octal]\ngain rw {\n^~~~\n") + c.shown);
  }
}

TEST(ReportText, ShowsWhatTakesThePlaceOfQuotesWithoutAny) {
  Finding finding = {"undefined-index", {3, 12, 10}, "x"};
  finding.proposal = {finding.at, "side"};
  EXPECT_NE(written({{finding}, {}, {}}).find("note: did you mean side?\n"), std::string::npos);
}

TEST(ReportText, KeepsMessagesFromSteeringTheTerminal) {
  EXPECT_EQ(written({{{"octal", {}, "a\n\x1B[2J\xFF"}}, {}, {}}),
            "a.ostrel: warning: a\u240A\u241B[2J\uFFFD [octal]\n");
}

TEST(ReportText, ListsWhatIsAllowedAndUndecidedWhereThatIsAsked) {
  CheckReport report;
  report.findings = {{"octal", {2, 17, 3}, "x"}};
  report.allowed = {{"merged", {1, 0, 4}, "y"}};
  report.undecided = {{"never-true", {5, 0, 0}, "z"}, {"always-true", {5, 0, 0}, "z"}};
  const std::string octal =
      "a.ostrel:2:18: warning: x [octal]\n\trangeValid\t{ 0..010 }\n\t          \t     ^~~\n";
  const std::string count = "a.ostrel: note: 2 questions undecided\n";
  EXPECT_EQ(written(report), octal + count);
  const std::string allowed = "a.ostrel:1:1: allowed: y [merged]\ngain rw {\n^~~~\n";
  EXPECT_EQ(written(report, {.showsAllowed = true}), allowed + octal + count);
  EXPECT_EQ(written(report, {.showsUndecided = true}),
            octal + "a.ostrel:5:1: undecided: z [never-true]\n}\n^\n" +
                "a.ostrel:5:1: undecided: z [always-true]\n}\n^\n" + count);
  report.undecided.pop_back();
  EXPECT_EQ(written(report), octal + "a.ostrel: note: 1 question undecided\n");
}

TEST(ReportText, HasColoursWhereTheyAreAskedFor) {
  EXPECT_EQ(written({{{"octal", {1, 0, 4}, "x"}}, {}, {}}, {.hasColours = true}),
            "\33[1ma.ostrel:1:1:\33[m \33[1;35mwarning:\33[m x [\33[1moctal\33[m]\n"
            "gain rw {\n"
            "\33[1;32m^~~~\33[m\n");
}

}  // namespace
