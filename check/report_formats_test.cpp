// A report with all that a finding can have, in JSON and in SARIF, compared with the files of
// check/testdata/. A test in tests/check/ holds these files to the schemas.
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>

#include "check/report_json.h"
#include "check/report_sarif.h"
#include "check/text/finding_codes.h"

namespace {

using Json = nlohmann::ordered_json;

std::string contentsOf(const std::string& name) {
  std::ifstream file(std::string(TESTDATA_DIRECTORY) + "/" + name, std::ios::binary);
  EXPECT_TRUE(file) << name;
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

FileReport fileOf(std::string name, std::string text, CheckReport report) {
  return {std::make_unique<SourceText>(std::move(name), std::move(text)), std::move(report)};
}

std::vector<FileReport> fullReport() {
  Finding full = {"uncovered", {2, 14, 4}, "no range applies"};
  full.related = {{{1, 0, 4}, "defined here"}, {{}, "nowhere"}};
  full.proposal = Proposal{{2, 20, 0}, "\"x\xFF\""};
  full.witness = {{"mode", "\xFF\"\n"}, {"a", ""}};
  full.variant = "MODEL=pro";
  CheckReport report;
  report.findings = {full, {"cycle", {}, "a line\nand a byte \xFF"}};
  report.findings[1].proposal = Proposal{{}, "-D MODEL=..."};
  report.allowed = {{"octal", {3, 2, 0}, "octal"}};
  report.undecided = {{"never-true", {9, 9, 9}, "beyond the text"}};
  std::vector<FileReport> files;
  // In the second line, 14 bytes are 11 characters.
  files.push_back(
      fileOf("dir/a b:%.ostrel", "gain rw {\n  \"h\u00F6he\u2192\" x \xFF\xFEz\n}\n", report));
  files.push_back(fileOf("/tmp/\xFF.ostrel", "", {}));
  files.push_back(fileOf("<stdin>", "gain\n", {{{"merged", {1, 0, 4}, "twice"}}, {}, {}}));
  files.back().report.findings[0].level = LEVEL_NOTE;
  return files;
}

TEST(ReportFormats, WriteAllThatAFindingHasAsJson) {
  EXPECT_EQ(jsonReport(fullReport()), contentsOf("report.json"));
}

TEST(ReportFormats, WriteNoFilesAsJson) {
  EXPECT_EQ(jsonReport({}), "{\n  \"version\": 1,\n  \"files\": []\n}\n");
}

// The rules are all codes, each result names its own; both change with every new code.
TEST(ReportFormats, WriteAllThatAFindingHasAsSarif) {
  Json json = Json::parse(sarifReport(fullReport()));
  Json& run = json["runs"][0];
  Json& rules = run["tool"]["driver"]["rules"];
  ASSERT_EQ(rules.size(), findingCodes().size());
  for (Json& result : run["results"]) {
    EXPECT_EQ(rules[result["ruleIndex"].get<size_t>()]["id"], result["ruleId"]);
    result.erase("ruleIndex");
  }
  const FindingCode& octal = *findFindingCode("octal");
  const Json expected = {{"id", "octal"},
                         {"shortDescription", {{"text", octal.summary}}},
                         {"defaultConfiguration", {{"level", "warning"}}},
                         {"help", {{"text", octal.explanation}}}};
  EXPECT_EQ(rules[static_cast<size_t>(&octal - findingCodes().data())], expected);
  rules = Json::array();
  EXPECT_EQ(json.dump(2) + "\n", contentsOf("report.sarif"));
}

}  // namespace
