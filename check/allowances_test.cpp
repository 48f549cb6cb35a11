#include "check/allowances.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "check/text/read_text.h"

namespace {

// A text as the engine reads it.
struct Reading {
  explicit Reading(const std::string& lines) : source("text", lines) {
    Findings findings;
    readText(source, text, findings);
  }
  SourceText source;
  ReadText text;
};

std::string listed(const std::vector<Finding>& findings) {
  std::string lines;
  for (const Finding& finding : findings) {
    lines += std::to_string(finding.at.line) + ":" + std::to_string(finding.at.column + 1) + "+" +
             std::to_string(finding.at.length) + " " + finding.text;
    if (finding.proposal) lines += " (" + finding.proposal->text + ")";
    lines += "\n";
  }
  return lines;
}

// The places of `#` and of what is allowed there, of all places in the text where a finding could
// be.
std::string silencedLines(const std::string& lines) {
  const Reading reading(lines);
  Allowances allowances(reading.source, reading.text.layout);
  std::string silenced;
  for (uint32_t line = 1; line <= reading.source.lineCount(); ++line) {
    const auto column = static_cast<uint32_t>(reading.source.line(line).find_first_not_of(' '));
    if (allowances.allow({"octal", {line, column, 1}, {}})) silenced += std::to_string(line);
  }
  return silenced;
}

TEST(Allowances, SilenceTheNextStatementOrDefinition) {
  const struct {
    const char* text;
    const char* lines;
  } cases[] = {
      {"gain rw {\n  ctrlRO (1)\n}\n", ""},
      // A whole definition, and only that.
      {"# check: allow octal\ngain rw {\n  ctrlRO (1)\n}\nhue rw {\n}\n", "234"},
      {"a rw { }\n# check: allow octal\n\n# Why.\ngain rw {\n}\nhue rw { }\n", "56"},
      // A statement, and only that.
      {"gain rw {\n# check: allow octal\n  rangeValid {\n 1\n}\n  ctrlRO (1)\n}\n", "345"},
      {"gain rw {\n  ctrlRO (1)\n  # check: allow octal\n  default { 1 }\n}\n", "4"},
      // In the midst of a statement, that statement.
      {"gain rw {\n  rangeValid { 1,\n  # check: allow octal\n  2 }\n  ctrlRO (1)\n}\n", "234"},
      // Nothing follows in the definition, or in the text.
      {"gain rw {\n  ctrlRO (1)\n  # check: allow octal\n}\nhue rw { }\n", ""},
      {"gain rw { }\n# check: allow octal\n", ""},
      // One of another code, one of several codes.
      {"# check: allow merged\ngain rw { }\n", ""},
      {"# check: allow merged, octal\ngain rw { }\n", "2"},
      {"# check: allow merged\n# check: allow octal\ngain rw { }\n", "3"},
      {"  #check:allow octal\t,merged \r\ngain rw { }\n", "2"},
      // No comment of ours.
      {"# check allow octal\ngain rw { }\n", ""},
      {"gain rw { } # check: allow octal\n", ""},
      // A definition that the text leaves open.
      {"gain rw {\n  ctrlRO (1)\n# check: allow octal\n  default { 1 }\n", "4"},
      {"# check: allow octal\ngain rw {\n  ctrlRO (1)\n", "23"},
  };
  for (const auto& c : cases) EXPECT_EQ(silencedLines(c.text), c.lines) << c.text;
}

TEST(Allowances, ReportWhatIsWrongWithThem) {
  const struct {
    const char* comment;
    const char* report;
  } cases[] = {
      {"# check: allow octal", "1:16+5 there is no \"octal\" to allow in what follows\n"},
      {"# check: allow octal, merged",
       "1:16+5 there is no \"octal\" to allow in what follows\n"
       "1:23+6 there is no \"merged\" to allow in what follows\n"},
      {"# check: allow octl", "1:16+4 there is no code \"octl\" (octal)\n"},
      {"# check: allow everything", "1:16+10 there is no code \"everything\"\n"},
      {"# check: allow",
       "1:1+14 a \"# check:\" comment has the form \"# check: allow CODE, CODE\"\n"},
      {"  # check: deny octal  ",
       "1:3+19 a \"# check:\" comment has the form \"# check: allow CODE, CODE\"\n"},
      {"# check: allowoctal",
       "1:1+19 a \"# check:\" comment has the form \"# check: allow CODE, CODE\"\n"},
      {"# check: allow , octal",
       "1:16+0 a code is missing here\n1:18+5 there is no \"octal\" to allow in what follows\n"},
      {"# check: allow octal as panels send it",
       "1:22+17 only a comma and a further code can follow a code; a reason has a line of its "
       "own\n"},
  };
  for (const auto& c : cases) {
    const Reading reading(std::string(c.comment) + "\ngain rw { }\n");
    const Allowances allowances(reading.source, reading.text.layout);
    Findings findings;
    allowances.report([](const FindingCode& /*code*/) { return true; }, findings);
    for (const Finding& finding : findings.all()) EXPECT_EQ(finding.code, "unused-allowance");
    EXPECT_EQ(listed(findings.inTextOrder()), c.report);
  }
}

TEST(Allowances, ReportNothingOfThoseThatSilenceSomething) {
  const Reading reading("# check: allow octal, merged\ngain rw { }\n");
  Allowances allowances(reading.source, reading.text.layout);
  EXPECT_TRUE(allowances.allow({"octal", {2, 0, 4}, {}}));
  Findings findings;
  allowances.report([](const FindingCode& /*code*/) { return true; }, findings);
  EXPECT_EQ(listed(findings.all()), "1:23+6 there is no \"merged\" to allow in what follows\n");
}

TEST(Allowances, ReportNothingOfWhatWasNotAsked) {
  const Reading reading("# check: allow octal, never-true\ngain rw { }\n# check: allow octal\n");
  const Allowances allowances(reading.source, reading.text.layout);
  Findings findings;
  allowances.report([](const FindingCode& code) { return code.name == "octal"; }, findings);
  EXPECT_EQ(listed(findings.inTextOrder()),
            "1:16+5 there is no \"octal\" to allow in what follows\n"
            "3:16+5 no statement or definition follows that could have \"octal\"\n");
}

TEST(Allowances, SilenceNothingThatTheDaemonRefuses) {
  const Reading reading("# check: allow cycle, constant-condition\ngain rw { }\n");
  Allowances allowances(reading.source, reading.text.layout);
  EXPECT_FALSE(allowances.allow({"cycle", {2, 0, 4}, {}}));
  Finding warning = {"constant-condition", {2, 0, 4}, {}};
  EXPECT_TRUE(allowances.allow(warning));
  warning.level = LEVEL_ERROR;
  EXPECT_FALSE(allowances.allow(warning));
  Findings findings;
  allowances.report([](const FindingCode& /*code*/) { return true; }, findings);
  EXPECT_EQ(listed(findings.all()),
            "1:16+5 the daemon refuses a text with \"cycle\", so it cannot be allowed\n");
}

TEST(Allowances, SilenceNoFindingWithoutAPlace) {
  const Reading reading("# check: allow octal\ngain rw { }\n");
  Allowances allowances(reading.source, reading.text.layout);
  EXPECT_FALSE(allowances.allow({"octal", {}, {}}));
}

}  // namespace
