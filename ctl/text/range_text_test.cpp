#include "ctl/text/range_text.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "ctl/text/output.h"

namespace {

InstanceState limited(std::vector<Span> spans, std::vector<std::string> texts) {
  return {
      .flags = STATE_KNOWN | STATE_LIMITED, .spans = std::move(spans), .texts = std::move(texts)};
}

TEST(RangeText, NamesSpansAndTexts) {
  struct Case {
    InstanceState state;
    std::string text;
    std::string json;
  };
  const Case cases[] = {
      {limited({{0, 9}}, {}), "0..9", R"({"spans":[[0,9]],"texts":[]})"},
      {limited({{-5, -5}, {1, 2}}, {"off", "on air"}), R"(-5, 1..2, off, "on air")",
       R"({"spans":[[-5,-5],[1,2]],"texts":["off","on air"]})"},
      {limited({}, {""}), R"("")", R"({"spans":[],"texts":[""]})"},
      {limited({}, {}), "nothing", R"({"spans":[],"texts":[]})"},
      {{.flags = STATE_KNOWN}, "any value", "null"},
      {{.flags = STATE_KNOWN | STATE_NO_LIMITS}, "unknown", "false"},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(rangeText(c.state), c.text);
    EXPECT_EQ(rangeJson(c.state).dump(), c.json);
  }
}

TEST(RangeText, KnowsWhatIsAllowed) {
  const InstanceState state = limited({{0, 9}, {20, 20}}, {"off"});
  for (const char* value : {"0", "9", "0x9", "20", "off"}) {
    EXPECT_TRUE(isAllowed(state, value)) << value;
  }
  for (const char* value : {"-1", "10", "19", "on", "", "5 "}) {
    EXPECT_FALSE(isAllowed(state, value)) << value;
  }
  EXPECT_TRUE(isAllowed({.flags = STATE_KNOWN}, "x"));
  EXPECT_FALSE(isAllowed({.flags = STATE_KNOWN | STATE_NO_LIMITS}, "x"));
}

}  // namespace
