#include "database/levels.h"

#include <algorithm>
#include <numeric>

namespace {

// Nodes that must share a level, by the usual disjoint sets.
class Groups {
 public:
  explicit Groups(size_t nodes) : parent_(nodes) { std::iota(parent_.begin(), parent_.end(), 0U); }
  uint32_t of(uint32_t node) {
    while (parent_[node] != node) {
      parent_[node] = parent_[parent_[node]];
      node = parent_[node];
    }
    return node;
  }
  void join(uint32_t a, uint32_t b) { parent_[std::max(of(a), of(b))] = std::min(of(a), of(b)); }

 private:
  std::vector<uint32_t> parent_;
};

bool dependsOn(const DependentsGraph& dependents, uint32_t dependent, uint32_t node) {
  return std::binary_search(dependents[node].begin(), dependents[node].end(), dependent);
}

bool isMutual(const DependentsGraph& dependents, uint32_t a, uint32_t b) {
  return dependsOn(dependents, a, b) && dependsOn(dependents, b, a);
}

Groups groupMutualPairs(const DependentsGraph& dependents) {
  Groups groups(dependents.size());
  for (uint32_t node = 0; node < dependents.size(); ++node) {
    for (const uint32_t dependent : dependents[node]) {
      if (isMutual(dependents, node, dependent)) {
        groups.join(node, dependent);
      }
    }
  }
  return groups;
}

// A raising edge as the group above it sees it.
struct RaisingEdge {
  uint32_t from;       // the group below
  uint32_t dependent;  // the node of this group that depends on it
};

// The raising edges between groups, each group known by the node that stands for it.
struct GroupGraph {
  std::vector<std::vector<uint32_t>> above;
  std::vector<std::vector<RaisingEdge>> below;
};

GroupGraph raisingEdges(const DependentsGraph& dependents, Groups& groups) {
  GroupGraph graph;
  graph.above.resize(dependents.size());
  graph.below.resize(dependents.size());
  for (uint32_t node = 0; node < dependents.size(); ++node) {
    for (const uint32_t dependent : dependents[node]) {
      if (!isMutual(dependents, node, dependent)) {
        graph.above[groups.of(node)].push_back(groups.of(dependent));
        graph.below[groups.of(dependent)].push_back({groups.of(node), dependent});
      }
    }
  }
  return graph;
}

// What an unfinished walk left has something unfinished below it, so the way down ends in a cycle.
uint32_t findCycle(const GroupGraph& graph, const std::vector<size_t>& open, uint32_t group) {
  const auto wayDown = [&](uint32_t above) {
    return *std::find_if(graph.below[above].begin(), graph.below[above].end(),
                         [&](const RaisingEdge& edge) { return open[edge.from] > 0; });
  };
  std::vector<bool> visited(open.size(), false);
  while (!visited[group]) {
    visited[group] = true;
    group = wayDown(group).from;
  }
  return wayDown(group).dependent;
}

}  // namespace

int assignLevels(const DependentsGraph& dependents, std::vector<uint32_t>& levels,
                 uint32_t& onCycle) {
  Groups groups = groupMutualPairs(dependents);
  const GroupGraph graph = raisingEdges(dependents, groups);
  levels.assign(dependents.size(), 0);
  std::vector<size_t> open(dependents.size());  // edges from below that were not walked yet
  std::vector<uint32_t> ready;
  for (uint32_t node = 0; node < dependents.size(); ++node) {
    open[node] = graph.below[node].size();
    if (open[node] == 0) {
      ready.push_back(node);
    }
  }
  for (size_t i = 0; i < ready.size(); ++i) {
    for (const uint32_t above : graph.above[ready[i]]) {
      levels[above] = std::max(levels[above], levels[ready[i]] + 1);
      if (--open[above] == 0) {
        ready.push_back(above);
      }
    }
  }
  const auto stuck = std::find_if(open.begin(), open.end(), [](size_t edges) { return edges > 0; });
  if (stuck != open.end()) {
    onCycle = findCycle(graph, open, static_cast<uint32_t>(stuck - open.begin()));
    return 1;
  }
  for (uint32_t node = 0; node < dependents.size(); ++node) {
    levels[node] = levels[groups.of(node)];
  }
  return 0;
}
