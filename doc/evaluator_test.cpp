// The evaluator of a page against the engine, in a browser: the same answers to the same writes.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <random>
#include <string>
#include <vector>

#include "check/proof/random_definitions.h"
#include "doc/device_data.h"
#include "doc/script_json.h"
#include "fuzz/small_device.h"
#include "tests/harness/temp_dir.h"
#include "tests/support/random_count.h"
#include "tests/support/random_device.h"
#include "tests/support/random_texts.h"
#include "tests/support/recorded_talk.h"
#include "tests/support/run_program.h"
#include "vid_std.h"

namespace {

const std::vector<std::string> SOME_VALUES = {
    "", "0", "1", "2", "3", "5", "7", "9", "10", "-1", "20", "2147483647", "-2147483648", "31",
    "32", "-8", "a", "b", "abc", "on", "off", "1080i/50", "720p/50 wide", "1920x1080/50/I", "0x10",
    "-0x1f", "+7", "010", "08", "0x", " 5", "\t\n\v\f\r6", "5 ", "12ab", "4294967299",
    "1234567890123456789", "-1234567890123456789", "9223372036854775807", "9223372036854775808",
    "-9223372036854775809", "0xfffffffffffffffffffffffff", "0000000000000000000000000012",
    "01777777777777777777777", "99999999999999",
    // The first and the last character of each length in UTF-8.
    "\x7F\u0080\u07FF", "\u0800\uD7FF\uE000\uFFFF", "\U00010000\U0001F609\U00050001\U0010FFFF"};
std::string contentsOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  EXPECT_TRUE(file.good()) << path;
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

// The text `number` of all random texts.
TalkSubject randomSubject(uint32_t number) {
  const uint32_t seed = number / 6;
  switch (number % 6) {
    case 0:
      return {"RandomTexts", RandomTexts(seed).text()};
    case 1:
      return {"RandomDefinitions, with indices", RandomDefinitions(seed).write(TEXT_WITH_INDICES)};
    case 2:
      return {"RandomDefinitions, with a ring", RandomDefinitions(seed).write(TEXT_WITH_RING)};
    case 3:
    case 4:
      return {"RandomDevice",
              RandomDevice(number).text(),
              {{"MODEL", "pro"}, {"LIMIT", "12"}, {"EMPTY", ""}, {"STANDARD", "1080i/50"}}};
    default: {
      std::mt19937 random(number);
      std::vector<uint8_t> bytes(400);
      for (uint8_t& byte : bytes) byte = static_cast<uint8_t>(random());
      FuzzInput input(bytes.data(), bytes.size());
      return {
          "smallDevice", smallDevice(input), {{"CHANNELS", "2"}, {"AUDIO", "0"}, {"FITTED", "x"}}};
    }
  }
}

// A page with the evaluator, opened in a browser.
class EvaluatorPage {
 public:
  EvaluatorPage() : file_(directory_.path() + "/page.html") {
    file_ << "<!doctype html><meta charset=utf-8>\n";
    addFile("doc/evaluator.js");
  }
  void addFile(const std::string& name) {
    addScript(contentsOf(std::string(SOURCE_DIRECTORY) + "/" + name));
  }
  void addScript(const std::string& script) { file_ << "<script>" << script << "</script>\n"; }

  // What the page holds once its scripts have run.
  std::string open() {
    file_.close();
    const Outcome outcome =
        runCommand("chromium --headless --no-sandbox --disable-gpu --user-data-dir='" +
                   directory_.path() + "/profile' --dump-dom 'file://" + directory_.path() +
                   "/page.html' 2>'" + directory_.path() + "/errors'");
    EXPECT_EQ(outcome.status, 0) << contentsOf(directory_.path() + "/errors");
    return outcome.out;
  }

 private:
  TempDir directory_;
  std::ofstream file_;
};

// A page that plays talks, and expects no difference.
class TalkPage {
 public:
  TalkPage() { page_.addFile("tests/support/compare_talks.js"); }
  void add(const RecordedTalk& talk) {
    looks_ += talk.looks;
    page_.addScript("compareTalk(" + talk.json + ")");
  }
  void compare() {
    page_.addScript("showComparison()");
    const std::string shown = page_.open();
    const std::string expected =
        "comparison {\"looks\":" + std::to_string(looks_) + ",\"differences\":[]}";
    EXPECT_NE(shown.find(expected), std::string::npos) << expected << " was expected, and not\n"
                                                       << shown;
  }

 private:
  EvaluatorPage page_;
  size_t looks_ = 0;
};

// How many random texts that can be built are compared: more where the environment says so.
uint32_t textCount() {
  const char* const wanted = getenv("RANDOM_TEXTS");
  return wanted == nullptr ? randomCount(500)
                           : static_cast<uint32_t>(std::strtoul(wanted, nullptr, 10));
}

std::string dataOf(const std::string& text) {
  Database database;
  define(database, text);
  return scriptJson(deviceData(database));
}

class EvaluatorInABrowser : public testing::Test {
 protected:
  void SetUp() override { initVidStdTables(); }
};

TEST_F(EvaluatorInABrowser, AnswersAsTheEngineToRandomTexts) {
  constexpr uint32_t TEXTS_PER_PAGE = 1000;
  constexpr size_t STEPS = 12;
  uint32_t number = 0;
  for (uint32_t built = 0; built < textCount() && !HasFailure();) {
    TalkPage page;
    for (uint32_t onPage = 0; onPage < TEXTS_PER_PAGE && built < textCount(); ++number) {
      TalkSubject subject = randomSubject(number);
      subject.what += " " + std::to_string(number);
      subject.values = SOME_VALUES;
      const RecordedTalk talk = recordTalk(subject, number, STEPS);
      if (talk.json.empty()) continue;
      page.add(talk);
      ++onPage;
      ++built;
    }
    page.compare();
  }
  EXPECT_LT(number, 3 * textCount());
}

// A device with each operator between two values, and beside one that is undefined.
std::string everyOperator() {
  std::string text = "a rw { } b rw { } none rw { rangeValid { 0 } }\n";
  int number = 0;
  for (const std::string& sign : RandomDevice::OPERATORS) {
    for (const auto& [left, right] :
         {std::pair{"a", "b"}, {"vidStd::none::fr", "b"}, {"a", "vidStd::none::fr"}, {"a", "-1"}}) {
      text += "p" + std::to_string(number++) + " rw { default { (" + left + " " + sign + " " +
              right + ") } }\n";
    }
  }
  return text;
}

// Two parameters that follow each other, behind many others.
std::string ringBehindMany() {
  std::string text =
      "y rw { rangeValid { 0..(9 - z) } default { 5 } }\n"
      "z rw { rangeValid { 0..(9 - y) } default { 7 } }\n";
  for (int i = 10; i < 80; ++i) text += "p" + std::to_string(i) + " rw { default { (y + z) } }\n";
  for (int i = 10; i < 80; ++i) text += "~" + std::to_string(i) + " rw { default { (y) } }\n";
  return text;
}

// Names with too few and too many index values can be staged: what they read decides how a commit
// refuses them.
const char* const NAMED_AT_RANDOM = R"(
i index { rangeValid { 1..2 } }
t index { rangeValid { "a", "b" } }
q rw { index { i } default { 1 } }
r rw { index { t } default { 1 } }
p rw { index { i } ctrlValid (q) default { (q) } }
s rw { index { i, t } ctrlValid (q + r) ctrlRO (r) default { (q + r) } }
sw::this ro { rangeValid { 0..3 } ctrlValid (q[1]) }
zero rw { rangeValid { (q[1] - q[1]) } }
replaced rw { rangeValid { (q[1] - q[1]) } valueChange { 0 -> 5 } }
)";
const std::vector<std::string> RANDOM_NAMES = {
    "q[1]", "q[2]",    "r[a]", "p[1]",       "p[1][1]", "p[1][2][3]", "p",
    "p[3]", "s[1][a]", "s[1]", "s[1][a][b]", "s",       "q[1][1]",    "sw::this"};

// Instances that follow each other, one of them always the same: a query for a range evaluates
// those on its level, but not what leads back to its own parameter.
const char* const RING_OF_INSTANCES = R"(
i index { rangeValid { 1..3 } }
p rw { index { i } rangeValid { (q[1])..(9 - q[2]) } rangeValid (q[1] > 5) { 3..7 } default { 4 } }
q rw { index { i } rangeValid { 0..(9 - p) } rangeValid (p == 3) { 2, 6..8 } default { 4 } }
)";

TalkSubject exampleSubject(const std::string& file, const PlayConstants& constants) {
  return {file, contentsOf(std::string(SOURCE_DIRECTORY) + "/" + file), constants, SOME_VALUES};
}

TEST_F(EvaluatorInABrowser, AnswersAsTheEngineToChosenTexts) {
  const std::string product = "examples/frame-synchroniser.ostrel";
  const struct {
    TalkSubject subject;
    size_t steps;
  } talks[] = {
      {{"operators", everyOperator(), {}, SOME_VALUES, {"a", "b"}}, 200},
      {{"names", NAMED_AT_RANDOM, {}, {"0", "1", "2"}, RANDOM_NAMES}, 150},
      {{"ring", ringBehindMany(), {}, {"", "0", "9"}, {"y", "z"}}, 20},
      {{"instances", RING_OF_INSTANCES, {}, {"", "0", "1", "3", "6", "9"}}, 200},
      {exampleSubject("examples/picture.ostrel", {}), 40},
      {exampleSubject(product, {{"MODEL", "pro"}, {"CHANNELS", "2"}, {"AUDIO", "1"}}), 40},
      {exampleSubject(product, {{"MODEL", "basic"}, {"CHANNELS", "1"}, {"AUDIO", "0"}}), 40},
      {exampleSubject("tests/soak/device.ostrel", {{"MODEL", "pro"}}), 40},
      {exampleSubject("tests/sessions/operations.ostrel", {}), 40},
  };
  TalkPage page;
  for (const auto& [subject, steps] : talks) {
    const RecordedTalk talk = recordTalk(subject, 1, steps);
    ASSERT_FALSE(talk.json.empty()) << subject.what;
    page.add(talk);
  }
  page.compare();
}

// What a page may ask, right or wrong: none of it raises an exception.
TEST_F(EvaluatorInABrowser, RefusesWhatIsWrong) {
  const char* const text = R"(
mode rw { rangeValid { "slow", "fast" } default { "fast" } }
channel index { rangeValid { 1..2 } }
rate rw { index { channel } rangeValid { 0..9 } ctrlValid (mode == "fast") default { 5 } }
state ro { rangeValid { 0..1 } }
bank rw { rangeValid { 1..8, 32..64 } rangeValid (state) { 20..30 } }
name rw { }
twice ro { rangeValid { (name + name) } }
)";
  const char* const large = R"(
mode rw { }
row index { rangeValid { 1..1001 } }
column index { rangeValid { 1..1000 } }
cell rw { index { row, column } ctrlValid (mode == "fast") }
)";
  // Fewer instances, and more work for each than a commit may take.
  std::string heavy = R"(
mode rw { }
row index { rangeValid { 1..1000 } }
column index { rangeValid { 1..900 } }
cell rw { index { row, column } ctrlValid (mode)";
  for (int i = 0; i < 600; ++i) heavy += " +\nmode";
  heavy += ") }\n";
  const struct {
    const char* expression;
    const char* json;
  } cases[] = {
      {"large.set('mode', 'fast')",
       R"({"refused":"Commit failed because of internal error","changes":[]})"},
      {"heavy.set('mode', 1)",
       R"({"refused":"Commit failed because of internal error","changes":[]})"},
      {"large.bringUp()",
       R"({"refused":"the device has more than 1000000 instances","changes":[],"restless":[]})"},
      {"large.instances('cell')", "[]"},
      {"device.instances('rate')", R"(["rate[1]","rate[2]"])"},
      {"device.instances('mode')", R"(["mode"])"},
      {"device.instances('channel')", "[]"},
      {"device.instances('rate[1]')", "[]"},
      {"device.instances(null)", "[]"},
      {"device.set('rate[1]', 7)", R"({"changes":[]})"},
      {"device.set('rate[1]', 10)",
       R"({"refused":"Set failed because parameter value is invalid","changes":[]})"},
      {"device.set('rate[3]', 7)", R"({"changes":[]})"},
      {"device.set('sate', 7)",
       R"({"refused":"Set failed because parameter name is invalid","changes":[]})"},
      {"device.setStatus('', 7)",
       R"({"refused":"Set status failed because parameter name is invalid","changes":[]})"},
      {"device.setStatus('state', 2)",
       R"({"refused":"Set status failed because parameter value is invalid","changes":[]})"},
      {"device.setStatus('state', 1)",
       R"({"refused":"Commit failed because parameter definition is invalid","changes":[{"name":"state","value":"1"}]})"},
      {"device.set('state', 0)",
       R"({"refused":"Commit failed because parameter definition is invalid","changes":[]})"},
      {"device.value('state')", R"("1")"},
      {"device.reset('bank')",
       R"({"refused":"Commit failed because parameter definition is invalid","changes":[]})"},
      {"device.reset('bank[1]')",
       R"({"refused":"Commit failed because parameter index is invalid","changes":[]})"},
      {"device.reset({})",
       R"({"refused":"Reset failed because parameter name is invalid","changes":[]})"},
      {"device.set('name', null)",
       R"({"refused":"Set failed because parameter value is invalid","changes":[]})"},
      {"device.set('name', 'a\\0b')",
       R"({"refused":"Set failed because parameter value is invalid","changes":[]})"},
      {"device.set(Symbol.iterator, 1)",
       R"({"refused":"Set failed because parameter name is invalid","changes":[]})"},
      {"device.set('name', 'x'.repeat(1048577))",
       R"({"refused":"Set failed because parameter value is invalid","changes":[]})"},
      {"device.set('name', '\\ud800').changes",
       R"([{"name":"name","value":"�"},{"name":"twice","value":"��"}])"},
      {"device.set('name', 'x'.repeat(1048576)).changes.length", "1"},
      {"device.value('name').length + device.value('twice').length", "1048578"},
      {"device.range('twice')",
       R"x({"refused":"Get range failed because of invalid bounds (-2)"})x"},
      {"device.set('name', 'x'.repeat(524289)).changes.length", "1"},
      {"device.value('twice').length", "2"},
      {"device.set('name', 'x'.repeat(524288)).changes.length", "2"},
      {"device.value('twice').length", "1048576"},
      {"device.range('nothing')",
       R"x({"refused":"Get range failed because of invalid bounds (1)"})x"},
      {"device.range()", R"x({"refused":"Get range failed because of invalid bounds (1)"})x"},
      {"[device.value(), device.defaultValue([]), device.value('x'.repeat(2000000))]",
       R"(["","",""])"},
      {"[device.exists('rate'), device.exists(1), device.exists('rate[1]'), device.exists('mode')]",
       "[false,false,false,true]"},
      {"[device.writable('state'), device.writable(), device.writable('mode')]",
       "[false,false,true]"},
      {"device.commit()", R"({"changes":[]})"},
      {"device.commit([null])",
       R"({"refused":"Set failed because parameter name is invalid","changes":[]})"},
      {"device.commit([{name: 'name', value: ''}, {name: 'mode', value: 'x'}])",
       R"({"refused":"Set failed because parameter value is invalid","changes":[]})"},
      {"device.value('name').length", "524288"},
      {"Object.keys(globalThis).filter((name) => /ostrel/i.test(name))", "[]"},
  };
  EvaluatorPage page;
  page.addScript("const device = new OstrelDevice(" + dataOf(text) + ")");
  page.addScript("const large = new OstrelDevice(" + dataOf(large) + ")");
  page.addScript("const heavy = new OstrelDevice(" + dataOf(heavy) + ")");
  page.addScript("const lines = []");
  std::string expected;
  for (const auto& [expression, json] : cases) {
    page.addScript(std::string("lines.push(JSON.stringify(") + expression + "))");
    expected += std::string(json) + "\n";
  }
  page.addScript("document.documentElement.textContent = lines.join('\\n') + '\\n'");
  std::string shown = page.open();
  EXPECT_NE(shown.find(expected), std::string::npos) << shown << "expected:\n" << expected;
}

}  // namespace
