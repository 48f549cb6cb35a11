// The pairs of tests/check/: each directory has a text with a mistake, all that ostrel-check prints
// of it, and the nearest text without the mistake.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "check/text/finding_codes.h"
#include "tests/harness/temp_dir.h"
#include "tests/support/run_program.h"

namespace {

const std::filesystem::path PAIRS = PAIRS_DIRECTORY;

std::string contentsOf(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

// All directories but that of the schemas.
std::vector<std::string> pairNames() {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(PAIRS)) {
    if (entry.is_directory() && entry.path().filename() != "schemas") {
      names.push_back(entry.path().filename());
    }
  }
  std::sort(names.begin(), names.end());
  return names;
}

// What the program says of a text in the directory of its pair, on both streams.
Outcome check(const std::string& pair, const char* text, const std::string& further = "") {
  std::string options = contentsOf(PAIRS / pair / "options");
  std::replace(options.begin(), options.end(), '\n', ' ');
  return runCommand("cd '" + (PAIRS / pair).string() + "' && '" + OSTREL_CHECK + "' " + options +
                    further + " " + text + " 2>&1");
}

std::string caseName(const testing::TestParamInfo<std::string>& pair) {
  std::string name = pair.param;
  std::replace(name.begin(), name.end(), '-', '_');
  return name;
}

class CheckPair : public testing::TestWithParam<std::string> {};

TEST_P(CheckPair, IsToldApart) {
  const std::string& pair = GetParam();
  ASSERT_TRUE(std::filesystem::exists(PAIRS / pair / "text.ostrel"));
  ASSERT_TRUE(std::filesystem::exists(PAIRS / pair / "near.ostrel"));
  const std::string expected = contentsOf(PAIRS / pair / "expected");
  ASSERT_NE(expected, "");
  const Outcome wrong = check(pair, "text.ostrel");
  EXPECT_EQ(wrong.out, expected);
  EXPECT_EQ(wrong.status, countOf(expected, ": error: ") > 0 ? 1 : 0);

  const Outcome right = check(pair, "near.ostrel");
  EXPECT_EQ(right.out, "");
  EXPECT_EQ(right.status, 0);
}

TEST_P(CheckPair, IsTheSameWithAnyNumberOfJobs) {
  for (const char* const text : {"text.ostrel", "near.ostrel"}) {
    const Outcome one = check(GetParam(), text, " --verbose --jobs=1");
    for (const char* const jobs : {" --verbose --jobs=2", " --verbose --jobs=5"}) {
      const Outcome several = check(GetParam(), text, jobs);
      EXPECT_EQ(several.out, one.out) << text << jobs;
      EXPECT_EQ(several.status, one.status) << text << jobs;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Pairs, CheckPair, testing::ValuesIn(pairNames()), caseName);

// A pair is named for the code that it shows, or has a word more.
TEST(CheckPairs, ShowTheCodeOfTheirName) {
  for (const std::string& pair : pairNames()) {
    std::string_view longest;
    for (const FindingCode& code : findingCodes()) {
      const bool fits = pair == code.name || pair.starts_with(std::string(code.name) + "-");
      if (fits && code.name.size() > longest.size()) longest = code.name;
    }
    ASSERT_NE(longest, "") << pair;
    const std::string mark = "[" + std::string(longest) + "]\n";
    EXPECT_NE(contentsOf(PAIRS / pair / "expected").find(mark), std::string::npos) << pair;
  }
}

// The codes that have no pair yet.
const std::set<std::string_view> MISSING = {};

TEST(CheckPairs, EveryCodeHasOne) {
  const std::vector<std::string> pairs = pairNames();
  std::set<std::string_view> missing;
  for (const FindingCode& code : findingCodes()) {
    if (std::ranges::find(pairs, code.name) == pairs.end()) missing.insert(code.name);
  }
  EXPECT_EQ(missing, MISSING);
}

// What --explain shows: "Wrong:" and "Right:", each perhaps ", with OPTIONS", before lines that are
// indented by four.
struct ExplainedText {
  std::string options;
  std::string text;
};

ExplainedText explainedText(const FindingCode& code, const std::string& word) {
  const std::string explanation = "\n" + std::string(code.explanation);
  ExplainedText explained;
  size_t at = explanation.find("\n" + word);
  if (at == std::string::npos) return explained;
  at += 1 + word.size();
  const size_t colon = explanation.find(":\n", at);
  const std::string with = ", with ";
  if (colon > at) {
    explained.options = explanation.substr(at + with.size(), colon - at - with.size());
  }
  for (at = colon + 2; explanation.compare(at, 4, "    ") == 0;) {
    const size_t newline = explanation.find('\n', at);
    explained.text += explanation.substr(at + 4, newline + 1 - at - 4);
    at = newline + 1;
  }
  return explained;
}

Outcome check(const ExplainedText& explained) {
  const TempDir folder;
  const std::string path = folder.path() + "/explained.ostrel";
  std::ofstream(path) << explained.text;
  return runProgram(OSTREL_CHECK, explained.options + " '" + path + "' 2>&1");
}

TEST(CheckPairs, ExplanationsMendWhatTheyShow) {
  for (const FindingCode& code : findingCodes()) {
    SCOPED_TRACE(code.name);
    const ExplainedText wrong = explainedText(code, "Wrong");
    const ExplainedText right = explainedText(code, "Right");
    // A long line does not fit into an explanation.
    EXPECT_EQ(wrong.text.empty(), code.name == "long-line");
    EXPECT_EQ(right.text.empty(), code.name == "long-line");
    if (right.text.empty()) continue;
    EXPECT_NE(wrong.text + wrong.options, right.text + right.options);
    EXPECT_EQ(check(right).out, "");
    if (MISSING.contains(code.name)) continue;
    const std::string said = check(wrong).out;
    EXPECT_EQ(countOf(said, std::string("[") + std::string(code.name) + "]\n"), 1U) << said;
    EXPECT_EQ(countOf(said, "]\n"), 1U) << said;
  }
}

// ---- The manual page

// What roff would take for its own is escaped.
std::string asRoff(std::string_view text) {
  std::string escaped;
  for (const char c : text) {
    if (c == '\\') {
      escaped += "\\e";
    } else if (c == '^') {
      escaped += "\\(ha";
    } else {
      escaped += c;
    }
  }
  return escaped;
}

// `text` in lines of at most 80 bytes.
std::string wrapped(const std::string& text) {
  std::string lines;
  size_t width = 0;
  std::istringstream words(text);
  for (std::string word; words >> word; width += 1 + word.size()) {
    const bool isNew = width == 0 || width + 1 + word.size() > 80;
    if (isNew && width > 0) lines += '\n';
    if (isNew) width = 0;
    lines += (isNew ? "" : " ") + word;
  }
  return lines + '\n';
}

// The example of a code: the wrong text, and the first line that is said of it, without its file
// and its code.
std::string exampleOf(const FindingCode& code) {
  const ExplainedText wrong = explainedText(code, "Wrong");
  if (wrong.text.empty()) return {};
  std::string said = check(wrong).out;
  said.erase(said.find(" [" + std::string(code.name) + "]\n"));
  said.erase(0, said.find(".ostrel:") + std::string_view(".ostrel:").size());
  std::string example = ".It Cm " + std::string(code.name) + "\n";
  if (!wrong.options.empty()) example += "With\n.Ql " + wrong.options + " :\n";
  return example + ".Bd -literal -compact\n" + asRoff(wrong.text) + ".Ed\n" + asRoff(wrapped(said));
}

TEST(CheckPairs, AreShownInTheManual) {
  const std::string page = contentsOf(MANUAL_PAGE);
  const size_t section = page.find("\n.Ss Examples of all codes\n");
  ASSERT_NE(section, std::string::npos);
  const std::string start = "\n.Bl -ohang\n";
  const size_t from = page.find(start, section) + start.size();
  const std::string shown = page.substr(from, page.find(".El\n", from) - from);
  std::string expected;
  for (const FindingCode& code : findingCodes()) expected += exampleOf(code);
  EXPECT_EQ(shown, expected);
}

// The lines of the page that are commands, which another test plays.
std::string commandsOf(const std::string& page) {
  std::string commands;
  std::istringstream lines(page);
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with("$ ")) commands += line + "\n";
  }
  return commands;
}

TEST(CheckPairs, ComeWithAnExampleOfEveryOption) {
  const std::string commands = commandsOf(contentsOf(MANUAL_PAGE));
  const std::string help = runProgram(OSTREL_CHECK, "--help").out;
  const std::regex option("\n  (?:-(.), |    )--([a-z-]+)");
  size_t count = 0;
  for (std::sregex_iterator found(help.begin(), help.end(), option), end; found != end; ++found) {
    ++count;
    const std::string shortName = (*found)[1].str();
    const bool isShown = countOf(commands, "--" + (*found)[2].str()) > 0 ||
                         (!shortName.empty() && countOf(commands, " -" + shortName) > 0);
    EXPECT_TRUE(isShown) << (*found)[2];
  }
  EXPECT_GE(count, 14U);
}

}  // namespace
