#include "database/levels.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <optional>
#include <random>
#include <utility>

namespace {

using Levels = std::vector<uint32_t>;

using Bundles = std::vector<Bundle>;

Levels levelsOf(const DependentsGraph& graph, const Bundles& bundles = {}) {
  Levels levels;
  uint32_t onCycle = 0;
  EXPECT_EQ(assignLevels(graph, bundles, levels, onCycle), 0);
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
      {"the example of the header", {{1}, {2}, {3}, {2}, {}}, {0, 1, 2, 2, 0}},
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
    Bundles bundles = {};
  };
  const Case cases[] = {
      {"a ring of three", {{1}, {2}, {0}}, {0, 1, 2}, 0},
      {"a ring with a way in and out", {{1}, {2}, {3}, {1, 4}, {}}, {1, 2, 3}, 1},
      // 0 is a pair with 1, but not on the ring itself.
      {"a ring with a pair at its side", {{1}, {0, 2}, {3}, {1}}, {1, 2, 3}, 1},
      // 0 and 1 are a pair, as are 1 and 2, but 2 has to be on a higher level than 0.
      {"within a group of pairs", {{1, 2}, {0, 2}, {1}}, {0, 1, 2}, 2},
      {"two rings that lead to one node",
       {{}, {2}, {3}, {0, 1}, {5}, {6}, {0, 4}},
       {1, 2, 3, 4, 5, 6},
       3},
      {"a name that leads back to its bundle", {{}, {}, {3}, {0}}, {0, 2, 3}, 0, {{{0, 1}, {2}}}},
      {"a ring of bundles", {{}, {}, {}}, {0, 1, 2}, 0, {{{0}, {1}}, {{1}, {2}}, {{2}, {0}}}},
      // Each is in a pair with 1, but 2 has to be on a higher level than 0.
      {"a bundle that makes one of two pairs", {{}, {}, {1}}, {0, 1, 2}, 2, {{{0, 1}, {0, 1, 2}}}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    Levels levels;
    uint32_t onCycle = UINT32_MAX;
    EXPECT_EQ(assignLevels(c.dependents, c.bundles, levels, onCycle), 1);
    EXPECT_NE(std::find(c.cycle.begin(), c.cycle.end(), onCycle), c.cycle.end()) << onCycle;
    EXPECT_EQ(onCycle, c.named);
  }
}

TEST(Levels, TakeEachDependentOfABundleAboveEachOfItsNames) {
  struct Case {
    const char* what;
    DependentsGraph dependents;
    Bundles bundles;
    Levels levels;
  };
  const DependentsGraph four(4);
  const Case cases[] = {
      {"two names and two dependents", four, {{{0, 1}, {2, 3}}}, {0, 0, 1, 1}},
      {"no dependents", four, {{{0, 1}, {}}}, {0, 0, 0, 0}},
      {"a name above another", {{1}, {}, {}, {}}, {{{0, 1}, {2, 3}}}, {0, 1, 2, 2}},
      {"a chain of bundles", four, {{{0}, {1, 2}}, {{2}, {3}}}, {0, 1, 1, 2}},
      {"all depend on all", four, {{{0, 1, 2, 3}, {0, 1, 2, 3}}}, {0, 0, 0, 0}},
      {"one depends on itself, as the rest on it", four, {{{1}, {0, 1, 2}}}, {1, 0, 1, 0}},
      {"two that are pairs, among others", four, {{{0, 1, 2}, {1, 2, 3}}}, {0, 1, 1, 2}},
      {"two bundles that make pairs", four, {{{0, 1}, {2, 3}}, {{2, 3}, {0, 1}}}, {0, 0, 0, 0}},
      {"a bundle and the rest of a pair", {{}, {}, {0}, {0}}, {{{0}, {1, 2, 3}}}, {0, 1, 0, 0}},
      // 2 depends on 0 by two bundles, of which the first makes no pair.
      {"pairs by several bundles", four, {{{0, 3}, {2}}, {{0, 2}, {0, 1, 2}}}, {1, 2, 1, 0}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(levelsOf(c.dependents, c.bundles), c.levels);
  }
}

// Levels by brute force: they rise until none changes, which without a cycle takes at most as many
// rounds as there are nodes.
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
        if (isPair) next[node] = std::max(next[node], next[dependent]);
      }
    }
    if (next == levels) return levels;
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
        if (random() % density == 0) graph[node].push_back(dependent);
      }
    }
    const std::optional<Levels> expected = bruteForceLevels(graph);
    Levels levels;
    uint32_t onCycle = 0;
    ASSERT_EQ(assignLevels(graph, {}, levels, onCycle), expected ? 0 : 1) << "graph " << i;
    if (expected) {
      ASSERT_EQ(levels, *expected) << "graph " << i;
    }
    cycles += expected ? 0 : 1;
  }
  // Both outcomes were really tried.
  EXPECT_GT(cycles, graphs / 10);
  EXPECT_LT(cycles, graphs * 9 / 10);
}

// Every pair of a bundle's names and dependents as an edge of its own.
DependentsGraph allPairs(DependentsGraph graph, const Bundles& bundles) {
  for (const Bundle& bundle : bundles) {
    for (const uint32_t name : bundle.names) {
      Levels& dependents = graph[name];
      dependents.insert(dependents.end(), bundle.dependents.begin(), bundle.dependents.end());
    }
  }
  for (std::vector<uint32_t>& dependents : graph) {
    std::sort(dependents.begin(), dependents.end());
    dependents.erase(std::unique(dependents.begin(), dependents.end()), dependents.end());
  }
  return graph;
}

// The node that a cycle is named by, worked out the plain way. Nodes that are pairs make a group,
// named by its first node. Groups at which no edge of the rest ends are taken away until none is
// left. From the first group of the rest, the way leads along first edges until it meets a group
// again.
class PlainCycle {
 public:
  explicit PlainCycle(const DependentsGraph& graph) : graph_(graph), group_(graph.size()) {
    std::iota(group_.begin(), group_.end(), 0U);
    for (uint32_t node = 0; node < graph.size(); ++node) {
      for (const uint32_t dependent : graph[node]) {
        if (isPair(node, dependent)) join(group_[node], group_[dependent]);
      }
    }
  }

  [[nodiscard]] uint32_t node() const {
    std::vector<bool> isStuck(graph_.size(), true);
    for (bool isChanged = true; isChanged;) {
      isChanged = false;
      for (uint32_t node = 0; node < graph_.size(); ++node) {
        if (isStuck[node] && firstBelow(node, isStuck).first == NOBODY) {
          for (uint32_t other = 0; other < graph_.size(); ++other) {
            if (group_[other] == group_[node]) isStuck[other] = false;
          }
          isChanged = true;
        }
      }
    }
    const auto stuck = std::find(isStuck.begin(), isStuck.end(), true);
    auto node = static_cast<uint32_t>(stuck - isStuck.begin());
    std::vector<bool> isVisited(graph_.size());
    while (!isVisited[group_[node]]) {
      isVisited[group_[node]] = true;
      node = firstBelow(node, isStuck).first;
    }
    return firstBelow(node, isStuck).second;
  }

 private:
  static constexpr uint32_t NOBODY = UINT32_MAX;

  [[nodiscard]] bool isPair(uint32_t a, uint32_t b) const {
    const auto leads = [&](uint32_t from, uint32_t to) {
      return std::count(graph_[from].begin(), graph_[from].end(), to) != 0;
    };
    return leads(a, b) && leads(b, a);
  }
  void join(uint32_t a, uint32_t b) {
    std::replace(group_.begin(), group_.end(), std::max(a, b), std::min(a, b));
  }
  // The first edge that raises a node's group above one that is stuck.
  [[nodiscard]] std::pair<uint32_t, uint32_t> firstBelow(uint32_t node,
                                                         const std::vector<bool>& isStuck) const {
    for (uint32_t below = 0; below < graph_.size(); ++below) {
      if (!isStuck[below]) continue;
      for (const uint32_t dependent : graph_[below]) {
        if (group_[dependent] == group_[node] && !isPair(below, dependent)) {
          return {below, dependent};
        }
      }
    }
    return {NOBODY, NOBODY};
  }

  const DependentsGraph& graph_;
  Levels group_;  // by node
};

// Some nodes of `size`, ascending.
std::vector<uint32_t> someOf(std::mt19937& random, size_t size, size_t density) {
  std::vector<uint32_t> nodes;
  for (uint32_t node = 0; node < size; ++node) {
    if (random() % density == 0) nodes.push_back(node);
  }
  return nodes;
}

TEST(Levels, OfBundlesAreThoseOfAllTheirPairs) {
  std::mt19937 random(31991);
  size_t cycles = 0;
  constexpr size_t graphs = 20000;
  for (size_t i = 0; i < graphs; ++i) {
    DependentsGraph graph(1 + random() % 9);
    const size_t density = 2 + random() % 8;
    for (std::vector<uint32_t>& dependents : graph) {
      dependents = someOf(random, graph.size(), 2 * density);
    }
    Bundles bundles(random() % 5);
    for (Bundle& bundle : bundles) {
      bundle.names = someOf(random, graph.size(), 1 + random() % density);
      if (bundle.names.empty()) bundle.names.push_back(0);
      // Every other one names what depends on it.
      bundle.dependents =
          random() % 2 == 0 ? bundle.names : someOf(random, graph.size(), 1 + random() % density);
    }
    const DependentsGraph pairs = allPairs(graph, bundles);
    const std::optional<Levels> expected = bruteForceLevels(pairs);
    Levels levels;
    uint32_t onCycle = UINT32_MAX;
    ASSERT_EQ(assignLevels(graph, bundles, levels, onCycle), expected ? 0 : 1) << "graph " << i;
    if (expected) {
      ASSERT_EQ(levels, *expected) << "graph " << i;
    } else {
      ASSERT_EQ(onCycle, PlainCycle(pairs).node()) << "graph " << i;
    }
    cycles += expected ? 0 : 1;
  }
  // Both outcomes were really tried.
  EXPECT_GT(cycles, graphs / 10);
  EXPECT_LT(cycles, graphs * 9 / 10);
}

TEST(Levels, TakeLargeBundlesWithoutTheirPairs) {
  // Each of them has 10^10 pairs.
  constexpr uint32_t count = 100'000;
  Bundles bundles(2);
  for (uint32_t node = 0; node < count; ++node) {
    bundles[0].names.push_back(node);
    bundles[0].dependents.push_back(count + node);
  }
  bundles[1] = {bundles[0].dependents, bundles[0].dependents};
  Levels expected(2 * size_t{count}, 1);
  std::fill_n(expected.begin(), count, 0);
  EXPECT_EQ(levelsOf(DependentsGraph(expected.size()), bundles), expected);
  Levels levels;
  uint32_t onCycle = 0;
  DependentsGraph back(expected.size());
  back[count] = {0};
  EXPECT_EQ(assignLevels(back, bundles, levels, onCycle), 1);
  EXPECT_EQ(onCycle, count + 1);  // 0 and `count` are a pair, and 0 has no other one
}

TEST(Levels, TakeLongChainsAndManyPairsWithoutRecursion) {
  constexpr uint32_t nodes = 100'000;
  DependentsGraph chain(nodes);
  DependentsGraph pairs(nodes);
  for (uint32_t node = 0; node < nodes; ++node) {
    if (node + 1 < nodes) chain[node] = {node + 1};
    pairs[node] = {node ^ 1U};
  }
  EXPECT_EQ(levelsOf(chain).back(), nodes - 1);
  EXPECT_EQ(levelsOf(pairs), Levels(nodes, 0));

  DependentsGraph ring = chain;
  ring.back() = {0};
  Levels levels;
  uint32_t onCycle = nodes;
  EXPECT_EQ(assignLevels(ring, {}, levels, onCycle), 1);
  EXPECT_LT(onCycle, nodes);
}

}  // namespace
