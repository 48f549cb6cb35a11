// That what is proposed for a text is right: put in its place, the text has the finding no more,
// and the daemon does not refuse it for something else. For the texts of tests/check/.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#include "base/system_log.h"
#include "check/checker.h"
#include "check/constant_choices.h"
#include "check/text/finding_codes.h"
#include "vid_std.h"

namespace {

std::string contentsOf(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

CheckOptions optionsOf(const std::filesystem::path& pair) {
  CheckOptions options;
  std::istringstream words(contentsOf(pair / "options"));
  for (std::string word; words >> word;) {
    if (word != "-D") continue;
    words >> word;
    EXPECT_EQ(addConstantChoice(word, options.constants), "");
  }
  return options;
}

std::vector<Finding> check(const std::string& text, const CheckOptions& options) {
  return checkText(SourceText("text", text), options).findings;
}

std::string mended(const std::string& text, const Proposal& proposal) {
  const SourceText source("text", text);
  std::string result = text;
  const size_t at = source.offsetOf({proposal.at.line, proposal.at.column});
  return result.replace(at, proposal.at.length, proposal.text);
}

bool isAfter(const TextPlace& at, const Proposal& proposal) {
  const size_t end = proposal.at.column + proposal.text.size();
  return at.line > proposal.at.line || (at.line == proposal.at.line && at.column > end);
}

// Whether the daemon refuses the text for `finding`.
bool isRefusal(const Finding& finding) {
  return findFindingCode(finding.code)->isRefusal(levelOf(finding));
}

bool hasSaid(const std::vector<Finding>& findings, const Finding& finding) {
  return std::ranges::any_of(findings, [&](const Finding& other) {
    return other.code == finding.code && other.text == finding.text;
  });
}

TEST(Proposals, MendWhatTheyAreFor) {
  initVidStdTables();
  size_t count = 0;
  for (const auto& entry : std::filesystem::directory_iterator(PAIRS_DIRECTORY)) {
    if (!std::filesystem::exists(entry.path() / "text.ostrel")) continue;
    const std::string text = contentsOf(entry.path() / "text.ostrel");
    const CheckOptions options = optionsOf(entry.path());
    const std::vector<Finding> before = check(text, options);
    for (const Finding& finding : before) {
      if (!finding.proposal || finding.proposal->at.line == 0) continue;
      ++count;
      const std::string right = mended(text, *finding.proposal);
      SCOPED_TRACE(entry.path().filename().string() + ": " + finding.text + "\n" + right);
      const std::vector<Finding> after = check(right, options);
      for (const Finding& left : check(right, options)) {
        const bool isSame = left.code == finding.code && left.at.line == finding.at.line &&
                            left.at.column == finding.at.column && left.text == finding.text;
        EXPECT_FALSE(isSame);
        // What is further on in the statement shows only now.
        if (!isRefusal(left) || hasSaid(before, left)) continue;
        EXPECT_TRUE(isAfter(left.at, *finding.proposal)) << left.text;
      }
    }
  }
  EXPECT_GT(count, 40U);
}

}  // namespace
