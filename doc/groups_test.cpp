#include "doc/groups.h"

#include <gtest/gtest.h>

#include <numeric>

namespace {

DocModel modelWith(const std::vector<std::string>& names) {
  DocModel model;
  for (const std::string& name : names) model.parameters.emplace_back().name = name;
  return model;
}

// "TITLE: NAME NAME" of each group; "TITLE_: NAME NAME" where they share a prefix.
std::vector<std::string> grouped(const std::vector<std::string>& names) {
  const DocModel model = modelWith(names);
  std::vector<size_t> all(names.size());
  std::iota(all.begin(), all.end(), 0);
  std::vector<std::string> lines;
  for (const DocGroup& group : groupsOf(model, all)) {
    std::string line = group.title + (group.hasPrefix ? "_:" : ":");
    for (const size_t member : group.members) line += " " + names[member];
    lines.push_back(line);
  }
  return lines;
}

TEST(Groups, ShareAPrefix) {
  using Lines = std::vector<std::string>;
  const struct {
    Lines names;
    Lines groups;
  } cases[] = {
      {{}, {}},
      {{"a"}, {"a: a"}},
      {{"crop_left", "mode", "crop_right"}, {"crop_: crop_left crop_right", "mode: mode"}},
      {{"x", "b.1", "a-1", "y", "a-2", "b.2"}, {"b_: b.1 b.2", "a_: a-1 a-2", "x … y: x y"}},
      {{"gpo1", "gpo2", "gpi1", "3"}, {"gpo_: gpo1 gpo2", "gpi1 … 3: gpi1 3"}},
      {{"_a", "_b"}, {"_a … _b: _a _b"}},
  };
  for (const auto& c : cases) EXPECT_EQ(grouped(c.names), c.groups);
}

TEST(Groups, ThatAreLargeArePartedFurther) {
  std::vector<std::string> names;
  for (int i = 0; i < 60; ++i) {
    names.push_back("audio_gain_" + std::to_string(i));
    names.push_back("audio_mute_" + std::to_string(i));
  }
  const std::vector<std::string> groups = grouped(names);
  ASSERT_EQ(groups.size(), 2U);
  EXPECT_TRUE(groups[0].starts_with("audio_gain_: audio_gain_0 audio_gain_1 "));
  EXPECT_TRUE(groups[1].starts_with("audio_mute_: audio_mute_0 audio_mute_1 "));

  names.clear();
  for (int i = 0; i < 200; ++i) names.push_back("p" + std::to_string(i));
  const std::vector<std::string> counted = grouped(names);
  ASSERT_EQ(counted.size(), 3U);
  EXPECT_TRUE(counted[0].starts_with("p0 … p65_: p0 p1 "));
  EXPECT_TRUE(counted[1].starts_with("p66 … p132_: p66 "));
  EXPECT_TRUE(counted[2].starts_with("p133 … p199_: p133 "));
}

}  // namespace
