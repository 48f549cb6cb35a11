// Levels: the order in which what depends on one another is evaluated.
#pragma once

#include <cstdint>
#include <vector>

/// Names as nodes 0 to n - 1: for each, the nodes that depend on it, ascending and without
/// repetition.
using DependentsGraph = std::vector<std::vector<uint32_t>>;

/// Nodes of which each one depends on each of the same names: what an index names is named by all
/// that it indexes. Both lists are ascending and without repetition. So many pairs cost the names
/// and the dependents once.
struct Bundle {
  std::vector<uint32_t> names;
  std::vector<uint32_t> dependents;
};

/// Gives each node its level, from the dependences of the graph and of the bundles. Two nodes that
/// depend on each other, and a node that depends on itself, stay on one level; every other
/// dependence puts the dependent above what it depends on, so that a level is the length of the
/// longest chain that leads there.
/// Returns 0, or 1 for a cycle that is not made of such pairs, with a node on it in `onCycle`.
int assignLevels(const DependentsGraph& dependents, const std::vector<Bundle>& bundles,
                 std::vector<uint32_t>& levels, uint32_t& onCycle);
