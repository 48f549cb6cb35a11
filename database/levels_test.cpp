#include "database/levels.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <random>

namespace {

using Levels = std::vector<uint32_t>;

Levels levelsOf(const DependentsGraph& graph) {
  Levels levels;
  uint32_t onCycle = 0;
  EXPECT_EQ(assignLevels(graph, levels, onCycle), 0);
  return levels;
}

TEST(Levels, AreTheLongestChainsOfDependence) {
  struct Case {
    const char* what;
    DependentsGraph dependents;
    Levels levels;
  };
  const Case cases[] = {
      {"nothing", {}, {}},
      {"nobody depends on anybody", {{}, {}}, {0, 0}},
      {"a chain", {{1}, {2}, {}}, {0, 1, 2}},
      {"a chain against the numbering", {{}, {0}, {1}}, {2, 1, 0}},
      {"a short and a long way", {{1, 2}, {2}, {}}, {0, 1, 2}},
      {"a diamond", {{1, 2}, {3}, {3}, {}}, {0, 1, 1, 2}},
      {"a pair shares its level", {{1}, {0}}, {0, 0}},
      {"a pair above another node", {{1}, {2}, {1}}, {0, 1, 1}},
      {"what depends on one of a pair", {{1, 2}, {0}, {}}, {0, 0, 1}},
      {"three that all depend on one another", {{1, 2}, {0, 2}, {0, 1}}, {0, 0, 0}},
      {"a node that depends on itself", {{0, 1}, {}}, {0, 1}},
      // 1 and 2 are a pair; 3 raises 2, so 1 comes along.
      {"a pair raised on one side", {{4}, {0, 2}, {1}, {2}, {}}, {2, 1, 1, 0, 3}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(levelsOf(c.dependents), c.levels);
  }
}

TEST(Levels, RefuseACycleAndNameANodeOnIt) {
  struct Case {
    const char* what;
    DependentsGraph dependents;
    std::vector<uint32_t> cycle;
    uint32_t named;  // the way down takes the first edge
  };
  const Case cases[] = {
      {"a ring of three", {{1}, {2}, {0}}, {0, 1, 2}, 0},
      {"a ring with a way in and out", {{1}, {2}, {3}, {1, 4}, {}}, {1, 2, 3}, 1},
      // 0 is a pair with 1, but not on the ring itself.
      {"a ring with a pair at its side", {{1}, {0, 2}, {3}, {1}}, {1, 2, 3}, 1},
      // 0 and 1 are a pair, as are 1 and 2, but 2 is to stand above 0.
      {"within a group of pairs", {{1, 2}, {0, 2}, {1}}, {0, 1, 2}, 2},
      {"two rings that lead to one node",
       {{}, {2}, {3}, {0, 1}, {5}, {6}, {0, 4}},
       {1, 2, 3, 4, 5, 6},
       3},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    Levels levels;
    uint32_t onCycle = UINT32_MAX;
    EXPECT_EQ(assignLevels(c.dependents, levels, onCycle), 1);
    EXPECT_NE(std::find(c.cycle.begin(), c.cycle.end(), onCycle), c.cycle.end()) << onCycle;
    EXPECT_EQ(onCycle, c.named);
  }
}

// The same by brute force: levels rise until nothing changes; without a cycle that is over within
// as many rounds as there are nodes.
std::optional<Levels> bruteForceLevels(const DependentsGraph& graph) {
  const auto depends = [&](uint32_t dependent, uint32_t node) {
    return std::count(graph[node].begin(), graph[node].end(), dependent) != 0;
  };
  Levels levels(graph.size(), 0);
  for (size_t round = 0; round <= graph.size() * graph.size() + 1; ++round) {
    Levels next = levels;
    for (uint32_t node = 0; node < graph.size(); ++node) {
      for (const uint32_t dependent : graph[node]) {
        const bool isPair = depends(node, dependent);
        next[dependent] = std::max(next[dependent], next[node] + (isPair ? 0 : 1));
        if (isPair) {
          next[node] = std::max(next[node], next[dependent]);
        }
      }
    }
    if (next == levels) {
      return levels;
    }
    levels = next;
  }
  return std::nullopt;
}

TEST(Levels, AgreeWithBruteForceOnRandomGraphs) {
  std::mt19937 random(20191);
  size_t cycles = 0;
  constexpr size_t graphs = 3000;
  for (size_t i = 0; i < graphs; ++i) {
    DependentsGraph graph(1 + random() % 7);
    const uint32_t density = 3 + random() % 8;
    for (uint32_t node = 0; node < graph.size(); ++node) {
      for (uint32_t dependent = 0; dependent < graph.size(); ++dependent) {
        if (random() % density == 0) {
          graph[node].push_back(dependent);
        }
      }
    }
    const std::optional<Levels> expected = bruteForceLevels(graph);
    Levels levels;
    uint32_t onCycle = 0;
    ASSERT_EQ(assignLevels(graph, levels, onCycle), expected ? 0 : 1) << "graph " << i;
    if (expected) {
      ASSERT_EQ(levels, *expected) << "graph " << i;
    }
    cycles += expected ? 0 : 1;
  }
  // Both outcomes were really tried.
  EXPECT_GT(cycles, graphs / 10);
  EXPECT_LT(cycles, graphs * 9 / 10);
}

TEST(Levels, TakeLongChainsAndManyPairsWithoutRecursion) {
  constexpr uint32_t nodes = 100'000;
  DependentsGraph chain(nodes);
  DependentsGraph pairs(nodes);
  for (uint32_t node = 0; node < nodes; ++node) {
    if (node + 1 < nodes) {
      chain[node] = {node + 1};
    }
    pairs[node] = {node ^ 1U};
  }
  EXPECT_EQ(levelsOf(chain).back(), nodes - 1);
  EXPECT_EQ(levelsOf(pairs), Levels(nodes, 0));

  DependentsGraph ring = chain;
  ring.back() = {0};
  Levels levels;
  uint32_t onCycle = nodes;
  EXPECT_EQ(assignLevels(ring, levels, onCycle), 1);
  EXPECT_LT(onCycle, nodes);
}

}  // namespace
