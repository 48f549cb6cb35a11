#include "doc/dot.h"

#include <gtest/gtest.h>

namespace {

DotGraph chain() {
  DotGraph graph;
  for (const uint32_t column : {0U, 0U, 1U, 1U}) graph.nodes.push_back({72, 20, column});
  graph.nodes[0].cluster = 0;
  graph.nodes[1].cluster = 0;
  graph.edges = {{0, 2}, {1, 2}, {1, 3}};
  return graph;
}

TEST(Dot, PutsColumnsFromLeftToRight) {
  std::vector<DotDrawing> drawings;
  ASSERT_EQ(drawGraphs({chain(), {}, chain()}, drawings), "");
  ASSERT_EQ(drawings.size(), 3U);
  const DotDrawing& first = drawings[0];
  ASSERT_EQ(first.centres.size(), 4U);
  EXPECT_EQ(first.centres[0].x, first.centres[1].x);
  EXPECT_EQ(first.centres[2].x, first.centres[3].x);
  EXPECT_LT(first.centres[1].x + 72, first.centres[2].x);
  EXPECT_GE(std::abs(first.centres[0].y - first.centres[1].y), 20);
  ASSERT_EQ(first.curves.size(), 3U);
  for (const std::vector<DotPoint>& curve : first.curves) {
    ASSERT_GE(curve.size(), 4U);
    EXPECT_EQ(curve.size() % 3, 1U);
    EXPECT_LT(curve.front().x, curve.back().x);
  }
  for (const DotPoint& centre : first.centres) {
    EXPECT_GT(centre.x, 0);
    EXPECT_LT(centre.x, first.width);
    EXPECT_GT(centre.y, 0);
    EXPECT_LT(centre.y, first.height);
  }
  EXPECT_TRUE(drawings[1].centres.empty());
  EXPECT_EQ(drawings[2].width, first.width);
}

TEST(Dot, SaysNothingWhereTheAnswerIsAnother) {
  std::vector<DotDrawing> drawings;
  EXPECT_FALSE(readPlain("", {chain()}, drawings));
  EXPECT_FALSE(readPlain("graph 1 2 2\nnode n0 1 1", {chain()}, drawings));
  EXPECT_FALSE(readPlain("graph 1 2 2\nwhat\nstop\n", {chain()}, drawings));
  // What is not in the graph is passed over.
  EXPECT_TRUE(readPlain("graph 1 2 2\nnode n9 1 1\nedge n9 n0 1 1 1\nstop\n", {chain()}, drawings));
}

TEST(Dot, SaysWhyItCannotDraw) {
  const std::string path = getenv("PATH");
  setenv("PATH", "/nowhere", 1);
  std::vector<DotDrawing> drawings;
  EXPECT_TRUE(drawGraphs({chain()}, drawings).ends_with("; install graphviz"));
  setenv("PATH", path.c_str(), 1);
}

}  // namespace
