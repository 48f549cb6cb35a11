#include "doc/scene.h"

#include <gtest/gtest.h>

#include "doc/testing.h"

namespace {

// "LABEL@COLUMN LABEL@COLUMN: FROM>TO" of a scene, a star where it is too dense.
std::string textOf(const Scene& scene) {
  std::string text;
  for (size_t i = 0; i < scene.nodes.size(); ++i) {
    const std::optional<uint32_t> column = scene.graph.nodes[i].column;
    text += (i == 0 ? "" : " ") + scene.nodes[i].label;
    if (column) text += "@" + std::to_string(*column);
    if (scene.graph.nodes[i].cluster) text += "+" + std::to_string(*scene.graph.nodes[i].cluster);
  }
  text += ":";
  for (const auto& [from, to] : scene.graph.edges) {
    text += " " + std::to_string(from) + ">" + std::to_string(to);
  }
  return text + (scene.isTooDense ? "*" : "");
}

std::string follower(const std::string& name, const std::string& followed) {
  return name + " rw { rangeValid { 0..(" + followed + ") } }\n";
}

TEST(Scene, AFewParametersAreOneDrawing) {
  const Scenes scenes = scenesOf(modelOf("mode rw { }\nalone rw { }\n" + follower("a_1", "mode") +
                                         follower("a_2", "a_1 + mode")));
  ASSERT_EQ(scenes.scenes.size(), 1U);
  EXPECT_EQ(scenes.scenes[0].group, std::nullopt);
  EXPECT_EQ(textOf(scenes.scenes[0]), "mode@1 a_1@2+0 a_2@3+0: 0>1 1>2 0>2");
  EXPECT_EQ(scenes.lone, (std::vector<size_t>{1}));
}

TEST(Scene, NothingFollowsAnythingInNoDrawing) {
  EXPECT_TRUE(scenesOf(modelOf("a rw { }\nb rw { }\n")).scenes.empty());
  EXPECT_TRUE(scenesOf(modelOf("")).scenes.empty());
}

TEST(Scene, ManyParametersAreGroupsFirst) {
  std::string text = "mode rw { }\nrate rw { }\n";
  for (int i = 0; i < 60; ++i) text += follower("a_" + std::to_string(i), "mode");
  for (int i = 0; i < 60; ++i) text += follower("b_" + std::to_string(i), "a_" + std::to_string(i));
  text += follower("b_60", "rate");
  const Scenes scenes = scenesOf(modelOf(text));
  ASSERT_EQ(scenes.groups.size(), 3U);
  ASSERT_EQ(scenes.scenes.size(), 4U);
  EXPECT_EQ(textOf(scenes.scenes[0]), "mode … rate (2) a (60) b (61): 0>1 1>2 0>2");
  // Groups before and behind are beside the levels, and an edge to many of them is one.
  EXPECT_EQ(scenes.scenes[3].group, 2U);
  EXPECT_EQ(textOf(scenes.scenes[3]), "mode@1 a (60)@4 rate@1 b (61)@4: 0>1 2>3");
}

TEST(Scene, TooMuchIsNotDrawn) {
  std::string text = "c_0 rw { }\n";
  for (int i = 1; i < 70; ++i) {
    std::string sum = "c_" + std::to_string(i - 1);
    for (int j = std::max(0, i - 8); j < i - 1; ++j) sum += " + c_" + std::to_string(j);
    text += follower("c_" + std::to_string(i), sum);
  }
  const Scenes scenes = scenesOf(modelOf(text));
  ASSERT_EQ(scenes.scenes.size(), 2U);
  EXPECT_EQ(textOf(scenes.scenes[0]), "c (70):");
  EXPECT_EQ(scenes.scenes[1].nodes.size(), 70U);
  EXPECT_TRUE(scenes.scenes[1].isTooDense);
}

TEST(Scene, LongNamesAreShortened) {
  const std::string name(100, 'x');
  const Scenes scenes = scenesOf(modelOf(name + " rw { }\n" + follower("a", name)));
  ASSERT_EQ(scenes.scenes.size(), 1U);
  EXPECT_EQ(scenes.scenes[0].nodes[0].label, std::string(35, 'x') + "…");
}

}  // namespace
