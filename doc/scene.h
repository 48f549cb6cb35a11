// Scenes: which parameters and groups the drawings of the picture have, and the edges between them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "doc/dot.h"
#include "doc/groups.h"
#include "doc/model.h"

/// A box of a drawing.
struct SceneNode {
  bool isGroup = false;
  size_t place = 0;   ///< of the parameter in its model, or of the group among the groups
  std::string label;  ///< what is written in it
};

/// One drawing.
struct Scene {
  std::optional<size_t> group;  ///< whose members it has; nothing: it is the whole device
  std::vector<SceneNode> nodes;
  DotGraph graph;           ///< its nodes are those of `nodes`
  bool isTooDense = false;  ///< it has too many nodes or edges to be drawn
};

/// All drawings of a device, the whole first.
struct Scenes {
  std::vector<DocGroup> groups;
  std::vector<size_t> lone;  ///< parameters that no drawing has: nothing follows them, nor they it
  std::vector<Scene> scenes;
};

Scenes scenesOf(const DocModel& model);
