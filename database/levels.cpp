#include "database/levels.h"

#include <algorithm>
#include <cstdint>
#include <numeric>
#include <utility>

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

// Whether two nodes depend on each other, `dependent` being one that depends on `node`.
bool isMutual(const DependentsGraph& dependents, uint32_t node, uint32_t dependent) {
  return std::binary_search(dependents[dependent].begin(), dependents[dependent].end(), node);
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

// A walk up the raising edges, which comes to a group once it has come along every edge from below.
// Each group is known by the node that stands for it.
class Ascent {
 public:
  explicit Ascent(const DependentsGraph& dependents)
      : dependents_(dependents),
        groups_(groupMutualPairs(dependents)),
        nextMember_(dependents.size(), NOBODY),
        open_(dependents.size()),
        levels_(dependents.size()) {
    for (uint32_t node = 0; node < dependents.size(); ++node) {
      addMember(node);
      forEachAbove(node, [&](uint32_t above) { ++open_[groups_.of(above)]; });
    }
  }

  void run() {
    std::vector<uint32_t> ready;
    for (uint32_t node = 0; node < open_.size(); ++node) {
      if (groups_.of(node) == node && open_[node] == 0) {
        ready.push_back(node);
      }
    }
    for (size_t i = 0; i < ready.size(); ++i) {
      for (uint32_t node = ready[i]; node != NOBODY; node = nextMember_[node]) {
        raiseAbove(node, ready);
      }
    }
  }

  // Whether the walk came to every group.
  [[nodiscard]] bool isComplete() const {
    return std::all_of(open_.begin(), open_.end(), [](uint32_t edges) { return edges == 0; });
  }

  // The level of each node, after a complete walk.
  [[nodiscard]] std::vector<uint32_t> levels() {
    for (uint32_t node = 0; node < levels_.size(); ++node) {
      levels_[node] = levels_[groups_.of(node)];
    }
    return std::move(levels_);
  }

  // A node on a cycle, after a walk that is not complete: what the walk did not come to has
  // something below it to which it did not come either, so the way down ends in a cycle.
  [[nodiscard]] uint32_t nodeOnCycle() {
    const std::vector<RaisingEdge> wayDown = edgesFromBelow();
    const auto stuck =
        std::find_if(open_.begin(), open_.end(), [](uint32_t edges) { return edges > 0; });
    auto group = static_cast<uint32_t>(stuck - open_.begin());
    std::vector<bool> visited(open_.size(), false);
    while (!visited[group]) {
      visited[group] = true;
      group = wayDown[group].from;
    }
    return wayDown[group].dependent;
  }

 private:
  static constexpr uint32_t NOBODY = UINT32_MAX;

  // A raising edge as the group above it sees it.
  struct RaisingEdge {
    uint32_t from = NOBODY;       // the group below
    uint32_t dependent = NOBODY;  // the node of this group that depends on it
  };

  void addMember(uint32_t node) {
    const uint32_t group = groups_.of(node);
    if (group != node) {
      nextMember_[node] = std::exchange(nextMember_[group], node);
    }
  }

  template <typename Take>
  void forEachAbove(uint32_t node, const Take& take) const {
    for (const uint32_t dependent : dependents_[node]) {
      if (!isMutual(dependents_, node, dependent)) {
        take(dependent);
      }
    }
  }

  void raiseAbove(uint32_t node, std::vector<uint32_t>& ready) {
    const uint32_t level = levels_[groups_.of(node)] + 1;
    forEachAbove(node, [&](uint32_t dependent) {
      const uint32_t above = groups_.of(dependent);
      levels_[above] = std::max(levels_[above], level);
      if (--open_[above] == 0) {
        ready.push_back(above);
      }
    });
  }

  // For each group that the walk did not come to, the first edge from such a group.
  std::vector<RaisingEdge> edgesFromBelow() {
    std::vector<RaisingEdge> edges(open_.size());
    for (uint32_t node = 0; node < open_.size(); ++node) {
      const uint32_t group = groups_.of(node);
      if (open_[group] > 0) {
        forEachAbove(node, [&](uint32_t above) {
          RaisingEdge& edge = edges[groups_.of(above)];
          if (edge.from == NOBODY) {
            edge = {group, above};
          }
        });
      }
    }
    return edges;
  }

  const DependentsGraph& dependents_;
  Groups groups_;
  std::vector<uint32_t> nextMember_;  // of a node's group
  std::vector<uint32_t> open_;        // by group: edges from below that were not walked yet
  std::vector<uint32_t> levels_;      // by group
};

}  // namespace

int assignLevels(const DependentsGraph& dependents, std::vector<uint32_t>& levels,
                 uint32_t& onCycle) {
  Ascent ascent(dependents);
  ascent.run();
  if (!ascent.isComplete()) {
    onCycle = ascent.nodeOnCycle();
    return 1;
  }
  levels = ascent.levels();
  return 0;
}
