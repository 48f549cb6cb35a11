// Levels: a topological order in layers. What a node depends on is on lower levels, so a commit
// that evaluates one level after the other sees each value after all that it follows.
#pragma once

#include <cstdint>
#include <vector>

/// A directed graph of the nodes 0 to n - 1: for each node those that depend on it, ascending and
/// without repetition.
using DependentsGraph = std::vector<std::vector<uint32_t>>;

/// A complete bipartite part of the graph: each of `dependents` depends on each of `names`. An
/// index makes one, of the names in its own expressions and the parameters that it indexes. Both
/// lists are ascending and without repetition. Its n * m edges cost n + m numbers and as much time.
struct Bundle {
  std::vector<uint32_t> names;
  std::vector<uint32_t> dependents;
};

/// Gives each node its level, from 0, by the edges of the graph and of the bundles. Two nodes that
/// depend on each other, and a node that depends on itself, stay on one level. Every other edge
/// puts the dependent above what it depends on, so a level is the length of the longest chain that
/// leads there. With edges 0 -> 1 -> 2, 2 <-> 3 and a lone node 4, the levels are 0, 1, 2, 2, 0.
///
/// Returns 0 with `levels` as long as `dependents`; or 1 for a cycle that is not made of such
/// pairs, with a node on it in `onCycle`. Takes time in the number of edges, bundles counted as
/// above, by the strongly connected components of the graph.
int assignLevels(const DependentsGraph& dependents, const std::vector<Bundle>& bundles,
                 std::vector<uint32_t>& levels, uint32_t& onCycle);
