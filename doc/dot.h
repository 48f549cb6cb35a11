// Drawings of graphs: where Graphviz puts nodes and edges, from left to right.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// A box to be placed. All lengths are in points, at least 1.
struct DotNode {
  double width = 1;
  double height = 1;
  std::optional<uint32_t> column = {};   ///< those of one column are below each other
  std::optional<uint32_t> cluster = {};  ///< those of one cluster are beside each other
};

/// A graph. Columns are from left to right in their order. An edge is of two places in `nodes`.
struct DotGraph {
  std::vector<DotNode> nodes;
  std::vector<std::pair<size_t, size_t>> edges;
};

struct DotPoint {
  double x = 0;
  double y = 0;
};

/// Where everything is: from the upper left corner, to the right and down.
struct DotDrawing {
  double width = 0;
  double height = 0;
  std::vector<DotPoint> centres;  ///< of each node
  /// Of each edge: the start of a curve, and three points for each of its Bezier pieces. Empty for
  /// an edge that was not drawn.
  std::vector<std::vector<DotPoint>> curves;
};

/// The text of graphs for the program dot.
std::string dotText(const std::vector<DotGraph>& graphs);
/// Reads what `dot -Tplain` says of `graphs`. Returns whether it says all of it.
bool readPlain(std::string_view plain, const std::vector<DotGraph>& graphs,
               std::vector<DotDrawing>& drawings);
/// Draws graphs by the program dot, all in one run. Returns nothing, or a sentence that says why it
/// cannot, and what would help.
std::string drawGraphs(const std::vector<DotGraph>& graphs, std::vector<DotDrawing>& drawings);
