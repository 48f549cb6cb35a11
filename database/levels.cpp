#include "database/levels.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <optional>
#include <span>
#include <tuple>
#include <utility>

namespace {

using Nodes = std::vector<uint32_t>;

bool contains(const Nodes& ascending, uint32_t node) {
  return std::binary_search(ascending.begin(), ascending.end(), node);
}

// The dependences with the bundles as nodes of their own, behind the others: from a bundle's names
// an edge leads to the bundle, from there to each of its dependents.
class Graph {
 public:
  Graph(const DependentsGraph& dependents, const std::vector<Bundle>& bundles)
      : dependents_(dependents), bundles_(bundles) {
    if (bundles.empty()) return;
    naming_.resize(dependents.size());
    holding_.resize(dependents.size());
    for (uint32_t number = 0; number < bundles.size(); ++number) {
      for (const uint32_t name : bundles[number].names) naming_[name].push_back(number);
      for (const uint32_t dependent : bundles[number].dependents) {
        holding_[dependent].push_back(number);
      }
    }
  }

  [[nodiscard]] size_t size() const { return dependents_.size() + bundles_.size(); }
  [[nodiscard]] bool isBundle(uint32_t node) const { return node >= dependents_.size(); }
  [[nodiscard]] const Bundle& bundleOf(uint32_t node) const {
    return bundles_[node - dependents_.size()];
  }
  [[nodiscard]] uint32_t nodeOf(uint32_t bundle) const {
    return static_cast<uint32_t>(dependents_.size()) + bundle;
  }
  [[nodiscard]] const std::vector<Bundle>& bundles() const { return bundles_; }
  [[nodiscard]] const Nodes& dependents(uint32_t node) const { return dependents_[node]; }
  // The bundles whose names hold a node, and those whose dependents hold it, ascending.
  [[nodiscard]] const Nodes& naming(uint32_t node) const { return listed(naming_, node); }
  [[nodiscard]] const Nodes& holding(uint32_t node) const { return listed(holding_, node); }

  // The node to which the edge `number` from a node leads, or nullopt.
  [[nodiscard]] std::optional<uint32_t> next(uint32_t node, size_t number) const {
    const Nodes& own = isBundle(node) ? bundleOf(node).dependents : dependents_[node];
    if (number < own.size()) return own[number];
    if (isBundle(node) || number - own.size() >= naming(node).size()) return std::nullopt;
    return nodeOf(naming(node)[number - own.size()]);
  }

  // Whether `node` depends on `name`.
  [[nodiscard]] bool depends(uint32_t node, uint32_t name) const {
    if (contains(dependents_[name], node)) return true;
    const Nodes* few = &naming(name);
    const Nodes* many = &holding(node);
    if (few->size() > many->size()) std::swap(few, many);
    return std::any_of(few->begin(), few->end(),
                       [many](uint32_t bundle) { return contains(*many, bundle); });
  }

 private:
  static const Nodes& listed(const std::vector<Nodes>& lists, uint32_t node) {
    static const Nodes none;
    return lists.empty() ? none : lists[node];
  }

  const DependentsGraph& dependents_;
  const std::vector<Bundle>& bundles_;
  std::vector<Nodes> naming_;
  std::vector<Nodes> holding_;
};

// The strongly connected components: nodes that depend on one another, directly or through others.
// Tarjan's walk, with a stack of its own; it meets a component after all to which it leads.
class Components {
 public:
  explicit Components(const Graph& graph) : graph_(graph), of_(graph.size(), NONE) {
    std::vector<uint32_t> lowest(graph.size(), NONE);
    for (uint32_t node = 0; node < graph.size(); ++node) {
      if (lowest[node] == NONE) walk(node, lowest);
    }
    begins_.push_back(static_cast<uint32_t>(nodes_.size()));
  }

  [[nodiscard]] uint32_t count() const { return static_cast<uint32_t>(begins_.size() - 1); }
  [[nodiscard]] uint32_t of(uint32_t node) const { return of_[node]; }
  [[nodiscard]] std::span<const uint32_t> nodes(uint32_t component) const {
    return std::span(nodes_).subspan(begins_[component],
                                     begins_[component + 1] - begins_[component]);
  }

 private:
  static constexpr uint32_t NONE = UINT32_MAX;

  struct Step {
    uint32_t node;
    uint32_t number;  // of the node in the walk
    size_t edge;
  };

  void walk(uint32_t start, std::vector<uint32_t>& lowest) {
    enter(start, lowest);
    while (!steps_.empty()) {
      Step& step = steps_.back();
      const uint32_t node = step.node;
      if (const std::optional<uint32_t> next = graph_.next(node, step.edge++)) {
        if (lowest[*next] == NONE) {
          enter(*next, lowest);
        } else if (of_[*next] == NONE) {
          lowest[node] = std::min(lowest[node], lowest[*next]);
        }
        continue;
      }
      if (lowest[node] == step.number) close(node);
      steps_.pop_back();
      if (!steps_.empty()) {
        uint32_t& before = lowest[steps_.back().node];
        before = std::min(before, lowest[node]);
      }
    }
  }

  void enter(uint32_t node, std::vector<uint32_t>& lowest) {
    lowest[node] = entered_;
    steps_.push_back({node, entered_++, 0});
    open_.push_back(node);
  }

  void close(uint32_t first) {
    const uint32_t component = static_cast<uint32_t>(begins_.size());
    begins_.push_back(static_cast<uint32_t>(nodes_.size()));
    uint32_t node = NONE;
    do {
      node = open_.back();
      open_.pop_back();
      of_[node] = component;
      nodes_.push_back(node);
    } while (node != first);
  }

  const Graph& graph_;
  std::vector<uint32_t> of_;
  std::vector<uint32_t> nodes_;   // by component
  std::vector<uint32_t> begins_;  // of each component's nodes, and the end
  std::vector<Step> steps_;
  std::vector<uint32_t> open_;
  uint32_t entered_ = 0;
};

// Calls `take` with every node outside a component to which an edge leads from there.
template <typename Take>
void forEachAbove(const Graph& graph, const Components& components, uint32_t component,
                  const Take& take) {
  for (const uint32_t node : components.nodes(component)) {
    for (size_t edge = 0; const std::optional<uint32_t> next = graph.next(node, edge); ++edge) {
      if (components.of(*next) != component) take(*next);
    }
  }
}

// Whether the nodes of a component depend on one another in pairs alone. Then they share a level;
// otherwise there is a cycle.
class PairCheck {
 public:
  PairCheck(const Graph& graph, const Components& components)
      : graph_(graph), components_(components), answers_(graph.bundles().size()) {}

  bool isMadeOfPairs(uint32_t component) {
    const std::span<const uint32_t> nodes = components_.nodes(component);
    return nodes.size() == 1 || std::all_of(nodes.begin(), nodes.end(), [&](uint32_t node) {
             return graph_.isBundle(node) ? isAnswered(node) : isAnsweredDirectly(node);
           });
  }

 private:
  struct Answer {
    uint32_t asked = 0;  // the bundle that was asked for last, counted from 1
    bool isComplete = false;
  };

  [[nodiscard]] bool isAnsweredDirectly(uint32_t node) const {
    const Nodes& dependents = graph_.dependents(node);
    return std::all_of(dependents.begin(), dependents.end(), [&](uint32_t dependent) {
      return components_.of(dependent) != components_.of(node) || graph_.depends(node, dependent);
    });
  }

  // Whether each of a bundle's names depends on each of its dependents, as far as both are in the
  // bundle's component.
  bool isAnswered(uint32_t bundle) {
    const uint32_t component = components_.of(bundle);
    const auto isInside = [&](uint32_t node) { return components_.of(node) == component; };
    Nodes dependents;
    std::copy_if(graph_.bundleOf(bundle).dependents.begin(),
                 graph_.bundleOf(bundle).dependents.end(), std::back_inserter(dependents),
                 isInside);
    ++asked_;
    const Nodes& names = graph_.bundleOf(bundle).names;
    return std::all_of(names.begin(), names.end(), [&](uint32_t name) {
      return !isInside(name) || dependsOnAll(name, dependents);
    });
  }

  // Mostly there is one bundle that makes it so, for many names.
  bool dependsOnAll(uint32_t node, const Nodes& names) {
    const Nodes& holding = graph_.holding(node);
    if (std::any_of(holding.begin(), holding.end(),
                    [&](uint32_t bundle) { return namesAll(bundle, names); })) {
      return true;
    }
    return std::all_of(names.begin(), names.end(),
                       [&](uint32_t name) { return graph_.depends(node, name); });
  }

  bool namesAll(uint32_t bundle, const Nodes& names) {
    Answer& answer = answers_[bundle];
    if (std::exchange(answer.asked, asked_) != asked_) {
      const Nodes& held = graph_.bundles()[bundle].names;
      answer.isComplete = std::includes(held.begin(), held.end(), names.begin(), names.end());
    }
    return answer.isComplete;
  }

  const Graph& graph_;
  const Components& components_;
  std::vector<Answer> answers_;  // by bundle
  uint32_t asked_ = 0;
};

// The way down from a node that is on a cycle or above one, from each group of nodes that share a
// level to the first one below it, until it comes to a group again.
class Descent {
 public:
  // `cycles` has the components that are not made of pairs.
  Descent(const Graph& graph, const Components& components, std::vector<bool> cycles)
      : graph_(graph),
        components_(components),
        isStuck_(std::move(cycles)),
        namedBy_(graph.size() - graph.bundles().size()),
        group_(namedBy_.size(), NONE) {
    for (uint32_t component = components.count(); component-- > 0;) {
      if (isStuck_[component]) {
        forEachAbove(graph, components, component,
                     [this](uint32_t node) { isStuck_[components_.of(node)] = true; });
      }
    }
    for (uint32_t name = 0; name < namedBy_.size(); ++name) {
      if (isStuck(name)) {
        for (const uint32_t dependent : graph.dependents(name)) namedBy_[dependent].push_back(name);
      }
    }
    for (const Bundle& bundle : graph.bundles()) {
      std::copy_if(bundle.names.begin(), bundle.names.end(),
                   std::back_inserter(stuckNames_.emplace_back()),
                   [this](uint32_t name) { return isStuck(name); });
      ungrouped_.push_back(bundle.dependents);
    }
  }

  [[nodiscard]] uint32_t nodeOnCycle() {
    uint32_t node = 0;
    while (!isStuck(node)) ++node;
    Edge edge{node, node};
    std::vector<Edge> ways;  // by group
    while (group_[edge.name] == NONE) {
      const Nodes members = makeGroup(edge.name, static_cast<uint32_t>(ways.size()));
      edge = firstFromBelow(members);
      ways.push_back(edge);
    }
    return ways[group_[edge.name]].dependent;
  }

 private:
  static constexpr uint32_t NONE = UINT32_MAX;

  struct Edge {
    uint32_t name = NONE;
    uint32_t dependent = NONE;
    [[nodiscard]] bool comesBefore(const Edge& other) const {
      return std::tie(name, dependent) < std::tie(other.name, other.dependent);
    }
  };

  [[nodiscard]] bool isStuck(uint32_t node) const { return isStuck_[components_.of(node)]; }

  // All that share a level with a node, as group `number`.
  Nodes makeGroup(uint32_t first, uint32_t number) {
    Nodes members = {first};
    group_[first] = number;
    const auto addPairs = [&](uint32_t node, const Nodes& dependents) {
      for (const uint32_t dependent : dependents) {
        if (group_[dependent] == NONE && components_.of(dependent) == components_.of(node) &&
            graph_.depends(node, dependent)) {
          group_[dependent] = number;
          members.push_back(dependent);
        }
      }
    };
    // NOLINTNEXTLINE(modernize-loop-convert): there come to be more of them.
    for (size_t i = 0; i < members.size(); ++i) {
      const uint32_t node = members[i];
      addPairs(node, graph_.dependents(node));
      for (const uint32_t bundle : graph_.naming(node)) {
        addPairs(node, ungrouped_[bundle]);
        std::erase_if(ungrouped_[bundle], [this](uint32_t held) { return group_[held] != NONE; });
      }
    }
    return members;
  }

  // The first edge that puts a group above something that the levels did not come to either.
  [[nodiscard]] Edge firstFromBelow(const Nodes& members) const {
    Edge first;
    const auto look = [&](const Nodes& names, uint32_t dependent) {
      for (const uint32_t name : names) {
        const Edge edge{name, dependent};
        if (first.comesBefore(edge)) return;
        if (group_[name] != group_[dependent] || !graph_.depends(name, dependent)) {
          first = edge;
          return;
        }
      }
    };
    for (const uint32_t dependent : members) {
      look(namedBy_[dependent], dependent);
      for (const uint32_t bundle : graph_.holding(dependent)) look(stuckNames_[bundle], dependent);
    }
    return first;
  }

  const Graph& graph_;
  const Components& components_;
  std::vector<bool> isStuck_;      // by component: on a cycle or above one
  std::vector<Nodes> namedBy_;     // by node: what it depends on directly and is stuck
  std::vector<Nodes> stuckNames_;  // by bundle
  std::vector<Nodes> ungrouped_;   // by bundle: its dependents that are in no group yet
  std::vector<uint32_t> group_;    // by node
};

// The components that are not made of pairs; nullopt where there is none.
std::optional<std::vector<bool>> findCycles(const Graph& graph, const Components& components) {
  PairCheck check(graph, components);
  std::vector<bool> cycles;
  bool isAny = false;
  for (uint32_t component = 0; component < components.count(); ++component) {
    cycles.push_back(!check.isMadeOfPairs(component));
    isAny = isAny || cycles.back();
  }
  return isAny ? std::optional(std::move(cycles)) : std::nullopt;
}

// The level of each component of a graph without cycles. A bundle by itself is as high as its
// highest name.
std::vector<uint32_t> componentLevels(const Graph& graph, const Components& components) {
  std::vector<uint32_t> levels(components.count());
  for (uint32_t component = components.count(); component-- > 0;) {
    forEachAbove(graph, components, component, [&](uint32_t node) {
      const uint32_t above = components.of(node);
      const bool isAlone = graph.isBundle(node) && components.nodes(above).size() == 1;
      levels[above] = std::max(levels[above], levels[component] + (isAlone ? 0 : 1));
    });
  }
  return levels;
}

}  // namespace

int assignLevels(const DependentsGraph& dependents, const std::vector<Bundle>& bundles,
                 std::vector<uint32_t>& levels, uint32_t& onCycle) {
  const Graph graph(dependents, bundles);
  const Components components(graph);
  if (std::optional<std::vector<bool>> cycles = findCycles(graph, components)) {
    onCycle = Descent(graph, components, std::move(*cycles)).nodeOnCycle();
    return 1;
  }
  const std::vector<uint32_t> ofComponents = componentLevels(graph, components);
  levels.resize(dependents.size());
  for (uint32_t node = 0; node < levels.size(); ++node) {
    levels[node] = ofComponents[components.of(node)];
  }
  return 0;
}
