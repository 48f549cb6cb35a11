// The example texts: that they are in order, and that a device started with them keeps in range.
#include <algorithm>
#include <csignal>
#include <fstream>
#include <iterator>
#include <set>
#include <sstream>

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
      {"reset_status_bulk(0, ['mode', 'position[1]', 'position[2]', 'blanking'])", "()"},
      {"commit(0)", "()", {"blanking=10", "mode=1080i/50", "position[1]=960", "position[2]=960"}},
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

class FrameSynchroniserExample : public ServiceTest,
                                 public testing::WithParamInterface<std::vector<std::string>> {
 protected:
  void SetUp() override {
    const std::string text = exampleText("frame-synchroniser.ostrel");
    serve(text, GetParam());
    const std::set<std::string> accessWords = {"ro", "rostrict", "rw", "wo"};
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
      std::istringstream words(line);
      std::string name;
      std::string access;
      if (words >> name >> access && accessWords.contains(access)) {
        parameters_.push_back(name);
      }
    }
    EXPECT_GE(parameters_.size(), 60U);
    EXPECT_EQ(answer("start()"), "0");
  }

  std::string answer(const std::string& call) {
    std::string result = client().answer(call);
    EXPECT_EQ(daemon().newLogLines(), std::vector<std::string>()) << call;
    return result;
  }

  // The values that an index can have now.
  std::vector<std::string> indexValues(const std::string& index) {
    const Reply reply = client().call("get_idx_range", g_variant_new("(us)", 0U, index.c_str()));
    if (reply.value == nullptr) return {};
    std::vector<std::string> values =
        textsOf(VariantPointer(g_variant_get_child_value(reply.value.get(), 0)).get());
    for (const auto& [low, high] : spansOf(*reply.value)) {
      for (int value = low; value <= high; ++value) {
        values.push_back(std::to_string(value));
      }
    }
    return values;
  }

  // The full names of all instances that exist now.
  std::vector<std::string> instances() {
    std::vector<std::string> names;
    for (const std::string& parameter : parameters_) {
      const Reply reply =
          client().call("get_parm_idx", g_variant_new("(us)", 0U, parameter.c_str()));
      EXPECT_NE(reply.value, nullptr) << reply.errorMessage;
      std::vector<std::string> ofParameter = {parameter};
      for (const std::string& index :
           textsOf(VariantPointer(g_variant_get_child_value(reply.value.get(), 0)).get())) {
        ofParameter = crossed(ofParameter, indexValues(index));
      }
      names.insert(names.end(), ofParameter.begin(), ofParameter.end());
    }
    return names;
  }

  // Gives every instance its default, as a controller does at start.
  void boot() {
    EXPECT_GT(instances().size(), parameters_.size());
    std::string list;
    for (const std::string& name : instances()) {
      list += std::string(list.empty() ? "'" : ", '") + name + "'";
    }
    EXPECT_EQ(answer("reset_status_bulk(0, [" + list + "])"), "()");
    EXPECT_EQ(answer("commit(0)"), "()");
    EXPECT_EQ(client().newSignals().size(), 1U);
  }

  // All instances with their values.
  std::vector<std::string> allValues() {
    std::vector<std::string> values;
    for (const std::string& name : instances()) {
      values.push_back(name + "=" + answer("single_get('" + name + "')"));
    }
    return values;
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
  static std::vector<std::pair<int, int>> spansOf(GVariant& range) {
    std::vector<std::pair<int, int>> spans;
    const VariantPointer list(g_variant_get_child_value(&range, 1));
    for (gsize i = 0; i < g_variant_n_children(list.get()); ++i) {
      gint32 low = 0;
      gint32 high = 0;
      g_variant_get_child(list.get(), i, "(ii)", &low, &high);
      spans.emplace_back(low, high);
    }
    return spans;
  }

  static bool inRange(const std::string& text, GVariant& range) {
    const std::vector<std::string> texts =
        textsOf(VariantPointer(g_variant_get_child_value(&range, 0)).get());
    const std::vector<std::pair<int, int>> spans = spansOf(range);
    if (texts.empty() && spans.empty()) return true;
    if (std::find(texts.begin(), texts.end(), text) != texts.end()) return true;
    const int number = std::stoi(text);
    return std::any_of(spans.begin(), spans.end(), [&](const std::pair<int, int>& span) {
      return span.first <= number && number <= span.second;
    });
  }

  static std::vector<std::string> crossed(const std::vector<std::string>& names,
                                          const std::vector<std::string>& values) {
    std::vector<std::string> result;
    for (const std::string& name : names) {
      for (const std::string& value : values) {
        result.push_back(std::string(name).append("[").append(value).append("]"));
      }
    }
    return result;
  }

  std::vector<std::string> parameters_;
};

TEST_P(FrameSynchroniserExample, StartsWithItsDefaults) {
  boot();
  EXPECT_EQ(answer("single_get_bulk(4, ['output_standard', 'h_active', 'v_total', 'hue[1]'])"),
            "['1080i/50', '1920', '1125', '0']");
  expectEverythingInRange();
}

TEST_P(FrameSynchroniserExample, HasItsDefaultsAfterOneCommit) {
  boot();
  const std::vector<std::string> values = allValues();
  boot();
  EXPECT_EQ(allValues(), values);
}

TEST_P(FrameSynchroniserExample, KeepsInRangeInEveryStandard) {
  boot();
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

INSTANTIATE_TEST_SUITE_P(
    Models, FrameSynchroniserExample,
    testing::Values(std::vector<std::string>{"MODEL=pro", "CHANNELS=2", "AUDIO=1"},
                    std::vector<std::string>{"MODEL=pro", "CHANNELS=4", "AUDIO=0"},
                    std::vector<std::string>{"MODEL=basic", "CHANNELS=1", "AUDIO=1"}));

}  // namespace
