#include "doc/scene.h"

#include <algorithm>
#include <map>
#include <set>
#include <utility>

#include "check/printable.h"
#include "doc/short_text.h"

namespace {

// A whole device of so many parameters and edges is one drawing.
constexpr size_t MANY_IN_ONE = 90;
constexpr size_t MANY_EDGES = 400;
// More nodes than these are no drawing that helps.
constexpr size_t MANY_NODES = 400;
// The width of a character of the drawing's type, and what is around a label.
constexpr double CHARACTER_WIDTH = 7.3;
constexpr double BESIDE_LABEL = 16;
constexpr double NODE_HEIGHT = 22;
constexpr size_t LONGEST_LABEL = 36;

class SceneMaker {
 public:
  explicit SceneMaker(const DocModel& model) : model_(model), groupOf_(model.parameters.size()) {}

  Scenes make() {
    std::vector<size_t> connected;
    size_t edges = 0;
    for (size_t i = 0; i < model_.parameters.size(); ++i) {
      const DocParameter& parameter = model_.parameters[i];
      const bool isLone = parameter.follows.empty() && parameter.followedBy.empty();
      (isLone ? scenes_.lone : connected).push_back(i);
      edges += parameter.follows.size();
    }
    if (connected.empty()) return std::move(scenes_);
    scenes_.groups = groupsOf(model_, connected);
    for (size_t group = 0; group < scenes_.groups.size(); ++group) {
      for (const size_t member : scenes_.groups[group].members) groupOf_[member] = group;
    }
    if (connected.size() <= MANY_IN_ONE && edges <= MANY_EDGES) {
      addOpen(connected);
    } else {
      addClosed(connected);
      for (size_t group = 0; group < scenes_.groups.size(); ++group) addMembers(group);
    }
    return std::move(scenes_);
  }

 private:
  // Collects the nodes and edges of one scene, each once.
  class Builder {
   public:
    explicit Builder(SceneMaker& maker) : maker_(maker) {}

    size_t parameter(size_t place, std::optional<uint32_t> cluster) {
      const DocParameter& parameter = maker_.model_.parameters[place];
      // Beside the levels is room for a column of other groups.
      return add({false, place, shortened(parameter.name, LONGEST_LABEL)}, parameter.level + 1,
                 cluster);
    }
    size_t group(size_t place, std::optional<uint32_t> column) {
      const DocGroup& group = maker_.scenes_.groups[place];
      const std::string label =
          shortened(group.title, LONGEST_LABEL) + " (" + std::to_string(group.members.size()) + ")";
      return add({true, place, label}, column, {});
    }
    void edge(size_t from, size_t to) {
      if (from != to && known_.emplace(from, to).second) scene_.graph.edges.emplace_back(from, to);
    }
    void finish(std::optional<size_t> group) {
      scene_.group = group;
      scene_.isTooDense =
          scene_.graph.edges.size() > MANY_EDGES || scene_.nodes.size() > MANY_NODES;
      maker_.scenes_.scenes.push_back(std::move(scene_));
    }

   private:
    size_t add(SceneNode node, std::optional<uint32_t> column, std::optional<uint32_t> cluster) {
      const auto [found, isNew] =
          places_.try_emplace({node.isGroup, node.place, column}, scene_.nodes.size());
      if (!isNew) return found->second;
      const double width =
          static_cast<double>(characterCount(node.label)) * CHARACTER_WIDTH + BESIDE_LABEL;
      scene_.graph.nodes.push_back({width, NODE_HEIGHT, column, cluster});
      scene_.nodes.push_back(std::move(node));
      return found->second;
    }

    SceneMaker& maker_;
    Scene scene_;
    std::map<std::tuple<bool, size_t, std::optional<uint32_t>>, size_t> places_;
    std::set<std::pair<size_t, size_t>> known_;
  };

  // Calls `visit` with the place of each parameter among `names`.
  template <typename Visit>
  void forEach(const std::vector<std::string>& names, const Visit& visit) const {
    for (const std::string& name : names) {
      const auto found = model_.places.find(name);
      if (found != model_.places.end()) visit(found->second);
    }
  }

  void addOpen(const std::vector<size_t>& connected) {
    Builder builder(*this);
    const auto node = [&](size_t place) {
      const auto group = static_cast<uint32_t>(groupOf_[place]);
      const bool hasPrefix = scenes_.groups[group].hasPrefix;
      return builder.parameter(place, hasPrefix ? std::optional(group) : std::nullopt);
    };
    for (const size_t place : connected) {
      const size_t to = node(place);
      forEach(model_.parameters[place].follows,
              [&](size_t followed) { builder.edge(node(followed), to); });
    }
    builder.finish({});
  }

  void addClosed(const std::vector<size_t>& connected) {
    Builder builder(*this);
    for (const size_t place : connected) {
      const size_t to = builder.group(groupOf_[place], {});
      forEach(model_.parameters[place].follows,
              [&](size_t followed) { builder.edge(builder.group(groupOf_[followed], {}), to); });
    }
    builder.finish({});
  }

  void addMembers(size_t group) {
    Builder builder(*this);
    const auto node = [&](size_t place, uint32_t column) {
      if (groupOf_[place] == group) return builder.parameter(place, {});
      return builder.group(groupOf_[place], column);
    };
    const uint32_t last = model_.levels() + 1;
    for (const size_t place : scenes_.groups[group].members) {
      const size_t own = builder.parameter(place, {});
      const DocParameter& parameter = model_.parameters[place];
      forEach(parameter.follows, [&](size_t other) { builder.edge(node(other, 0), own); });
      forEach(parameter.followedBy, [&](size_t other) { builder.edge(own, node(other, last)); });
    }
    builder.finish(group);
  }

  const DocModel& model_;
  std::vector<size_t> groupOf_;
  Scenes scenes_;
};

}  // namespace

Scenes scenesOf(const DocModel& model) { return SceneMaker(model).make(); }
