// The example texts: that they are in order, and that a device started with them keeps in range.
#include <algorithm>
#include <csignal>
#include <fstream>
#include <iterator>
#include <optional>
#include <set>
#include <sstream>

#include "tests/harness/bus_device.h"
#include "tests/harness/deaf_client.h"
#include "tests/harness/service_test.h"

namespace {

std::string exampleText(const std::string& name) {
  std::ifstream file(std::string(EXAMPLES_DIRECTORY) + "/" + name);
  EXPECT_TRUE(file) << name;
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

class PictureExample : public ServiceTest {};

TEST_F(PictureExample, PlaysTheTour) {
  serve(exampleText("picture.ostrel"));
  expectFacts({
      {"start()", "0"},
      {"reset_status_bulk(0, ['mode'])", "()"},
      {"commit(0)", "()", {"blanking=", "mode=1080i/50", "position[1]=", "position[2]="}},
      {"reset_status_bulk(0, ['position[1]', 'position[2]'])", "()"},
      {"commit(0)", "()", {"position[1]=960", "position[2]=960"}},
      {"reset_status_bulk(0, ['blanking'])", "()"},
      {"commit(0)", "()", {"blanking=10"}},
      {"single_set('position[1]', '1500')", "()", {"position[1]=1500"}},
      {"set(0, 'mode', '720p/50')", "()"},
      {"get_range(0, 'position[1]')", "([], [(0, 1279)])"},
      {"single_get('mode')", "'1080i/50'"},
      {"commit(0)", "()", {"mode=720p/50", "position[1]=1279"}},
      {"single_set('blanking', '1500')", "()", {"blanking=1279"}},
      {"set(0, 'mode', 'sepia')", "Set failed because parameter value is invalid"},
  });
}

// The recommended configuration of the bus.
class SessionBusExample : public ServiceTest {
 protected:
  SessionBusExample()
      : ServiceTest({.configuration = std::string(EXAMPLES_DIRECTORY) + "/session-bus.conf",
                     .limits = {}}) {}
  size_t memoryOfBus() { return memoryOf(bus().pid(), "VmHWM:"); }
};

TEST_F(SessionBusExample, OneThatNeverReadsCostsTheOthersNothingAndTheBusLittle) {
  constexpr size_t LIMIT = 34000000 / 1024;  // in KiB
  const size_t before = memoryOfBus();
  serve("note rw { }");
  const std::string mebibyte(size_t{1} << 20U, 'x');
  const Reply set = client().call("single_set", g_variant_new("(ss)", "note", mebibyte.c_str()));
  ASSERT_NE(set.value, nullptr) << set.errorMessage;
  DeafClient deaf(bus().address());
  for (int i = 0; i < 300; ++i) {
    deaf.send("single_get", "note");
    EXPECT_EQ(client().answer("single_is_valid('note', '1')"), "true");
  }
  EXPECT_LT(memoryOfBus(), before + 2 * LIMIT);
  EXPECT_EQ(client().answer("single_set('note', '1')"), "()");
  static_cast<void>(client().newSignals());
}

TEST_F(SessionBusExample, ABacklogIsRefusedByTheBus) {
  constexpr size_t LIMIT = 1000;
  serve("note rw { }");
  pause();
  for (size_t i = 0; i <= LIMIT; ++i) client().send("single_get('note')");
  waitForBus(client());
  resume();
  const std::vector<std::string> answers = client().collectAnswers();
  for (size_t i = 0; i < LIMIT; ++i) EXPECT_EQ(answers[i], "''") << i;
  EXPECT_TRUE(answers[LIMIT].starts_with("org.freedesktop.DBus.Error.LimitsExceeded"))
      << answers[LIMIT];
  EXPECT_EQ(client().answer("single_get('note')"), "''");
}

TEST_F(SessionBusExample, TheLargestReplyArrives) {
  serve("note rw { }");
  const std::string mebibyte(size_t{1} << 20U, 'x');
  const Reply set = client().call("single_set", g_variant_new("(ss)", "note", mebibyte.c_str()));
  ASSERT_NE(set.value, nullptr) << set.errorMessage;
  std::string names = "'note'";
  for (int i = 1; i < 31; ++i) names += ",'note'";
  EXPECT_GT(client().answer("single_get_bulk(31, [" + names + "])").size(), 31 * mebibyte.size());
  static_cast<void>(client().newSignals());
}

// A model of the frame synchroniser, with the default of `embed_groups`.
struct Model {
  std::vector<std::string> constants;
  std::string embedGroups;
  /// The instances that are empty in a device that is up: those without a default, and those that
  /// this model, or the standard by default, does not have.
  std::vector<std::string> empty;
};

class FrameSynchroniserExample : public ServiceTest, public testing::WithParamInterface<Model> {
 protected:
  void SetUp() override {
    std::string text = exampleText("frame-synchroniser.ostrel");
    const std::string range = "  rangeValid { 1..4 }\n  default { ";
    const size_t place = text.find(range + "4 }");
    ASSERT_NE(place, std::string::npos);
    text.replace(place + range.size(), 1, GetParam().embedGroups);
    serve(text, GetParam().constants);
    device_.emplace(client());
    readDefinitions(text);
    EXPECT_GE(known_.parms.size(), 60U);
  }

  // The definitions as they are laid out there: a line with name and access, and one with the
  // indices. Before anything is set, the indices have their constant ranges.
  void readDefinitions(const std::string& text) {
    const std::set<std::string> accessWords = {"ro", "rostrict", "rw", "wo"};
    std::istringstream lines(text);
    std::string definition;
    for (std::string line; std::getline(lines, line);) {
      std::replace(line.begin(), line.end(), ',', ' ');
      std::istringstream words(line);
      std::string name;
      std::string word;
      words >> name >> word;
      if (accessWords.contains(word)) {
        definition = name;
        known_.parms[name];
      } else if (name == "index" && word == "{") {
        while (words >> word && word != "}") known_.parms[definition].push_back(word);
      } else if (word == "index") {
        known_.indices[name] = device_->indexValues(name);
      }
    }
  }

  std::string answer(const std::string& call) {
    std::string result = client().answer(call);
    EXPECT_EQ(daemon().newLogLines(), std::vector<std::string>()) << call;
    return result;
  }

  // Gives every instance its default, as a controller does at start.
  void bringUp() {
    BringUp recipe(*device_, known_);
    recipe.run();
    EXPECT_TRUE(recipe.restless().empty());
    EXPECT_EQ(daemon().newLogLines(), std::vector<std::string>());
    static_cast<void>(client().newSignals());
  }

  // The full names of all instances that exist now.
  std::vector<std::string> instances() { return BringUp(*device_, known_).instances(); }

  std::vector<std::string> emptyInstances() {
    std::vector<std::string> names = instances();
    std::erase_if(
        names, [&](const std::string& name) { return !device_->values({name}).front().empty(); });
    return names;
  }

  // All instances with their values.
  std::vector<std::string> allValues() {
    std::vector<std::string> names = instances();
    const std::vector<std::string> values = device_->values(names);
    for (size_t i = 0; i < names.size(); ++i) names[i] += "=" + values[i];
    return names;
  }

  // Every value that is set lies in the range that the service gives for it.
  void expectEverythingInRange() {
    for (const std::string& name : instances()) {
      SCOPED_TRACE(name);
      const Reply value = client().call("single_get", g_variant_new("(s)", name.c_str()));
      const Reply range = client().call("get_range", g_variant_new("(us)", 0U, name.c_str()));
      ASSERT_NE(value.value, nullptr) << value.errorMessage;
      const gchar* text = nullptr;
      g_variant_get(value.value.get(), "(&s)", &text);
      if (range.value == nullptr) {
        // The one reason: a parameter that is not valid now follows one that was never set.
        EXPECT_STREQ(text, "") << range.errorMessage;
      } else if (*text != '\0') {
        EXPECT_TRUE(inRange(text, *range.value)) << text;
      }
    }
  }

 private:
  static bool inRange(const std::string& text, GVariant& range) {
    const std::vector<std::string> texts = rangeTexts(range);
    const std::vector<std::pair<int, int>> spans = rangeSpans(range);
    if (texts.empty() && spans.empty()) return true;
    if (std::find(texts.begin(), texts.end(), text) != texts.end()) return true;
    const int number = std::stoi(text);
    return std::any_of(spans.begin(), spans.end(), [&](const std::pair<int, int>& span) {
      return span.first <= number && number <= span.second;
    });
  }

  std::optional<BusDevice> device_;
  KnownDevice known_;
};

TEST_P(FrameSynchroniserExample, StartsWithItsDefaults) {
  bringUp();
  EXPECT_EQ(answer("single_get_bulk(4, ['output_standard', 'h_active', 'v_total', 'hue[1]'])"),
            "['1080i/50', '1920', '1125', '0']");
  EXPECT_EQ(emptyInstances(), GetParam().empty);
  expectEverythingInRange();
}

TEST_P(FrameSynchroniserExample, IsTheSameWhenItIsBroughtUpAgain) {
  bringUp();
  const std::vector<std::string> values = allValues();
  bringUp();
  EXPECT_EQ(allValues(), values);
}

TEST_P(FrameSynchroniserExample, KeepsInRangeInEveryStandard) {
  bringUp();
  EXPECT_EQ(answer("single_set_bulk(['crop_left[1]', 'crop_right[1]', 'crop_top[1]', "
                   "'crop_bottom[1]', 'timing_lines'], ['900', '900', '500', '500', '500'])"),
            "()");
  EXPECT_EQ(answer("single_set('output_standard', '1080p/25')"), "()");
  EXPECT_EQ(answer("single_set('vbi_pass_last', '41')"), "()");
  EXPECT_EQ(answer("single_set('vbi_pass_first', '40')"), "()");
  for (const char* standard : {"625i/50", "720p/59.94", "NTSC", "1080p/25", "525i/59.94"}) {
    SCOPED_TRACE(standard);
    EXPECT_EQ(answer(std::string("single_set('output_standard', '") + standard + "')"), "()");
    expectEverythingInRange();
  }
}

const Model MODELS[] = {
    {{"MODEL=pro", "CHANNELS=2", "AUDIO=1"},
     "4",
     {"firmware_version", "input_name[1]", "input_name[2]", "serial_number", "wss_mode"}},
    // The default narrows the index of the audio groups.
    {{"MODEL=pro", "CHANNELS=2", "AUDIO=1"},
     "2",
     {"firmware_version", "input_name[1]", "input_name[2]", "serial_number", "wss_mode"}},
    {{"MODEL=pro", "CHANNELS=4", "AUDIO=0"},
     "4",
     {"audio_delay_mode", "audio_memory", "embed_groups", "firmware_version", "input_name[1]",
      "input_name[2]", "input_name[3]", "input_name[4]", "serial_number", "tone_level",
      "wss_mode"}},
    {{"MODEL=basic", "CHANNELS=1", "AUDIO=1"},
     "2",
     {"firmware_version", "input_name[1]", "noise_reduction[1]", "rgb_gamma[1][blue]",
      "rgb_gamma[1][green]", "rgb_gamma[1][red]", "serial_number", "wss_mode"}},
};
INSTANTIATE_TEST_SUITE_P(Models, FrameSynchroniserExample, testing::ValuesIn(MODELS));

}  // namespace
