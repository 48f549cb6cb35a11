// Levels: the order in which what depends on one another is evaluated.
#pragma once

#include <cstdint>
#include <vector>

/// Names as nodes 0 to n - 1: for each, the nodes that depend on it, ascending and without
/// repetition.
using DependentsGraph = std::vector<std::vector<uint32_t>>;

/// Gives each node its level. Two nodes that depend on each other, and a node that depends on
/// itself, stay on one level; every other dependence puts the dependent above what it depends on,
/// so that a level is the length of the longest chain that leads there.
/// Returns 0, or 1 for a cycle that is not made of such pairs, with a node on it in `onCycle`.
int assignLevels(const DependentsGraph& dependents, std::vector<uint32_t>& levels,
                 uint32_t& onCycle);
