// Index tuples: the index values of one parameter instance, in index order.
#pragma once

#include <string>
#include <vector>

using IndexTuple = std::vector<std::string>;

/// What follows the base name in a full name: "[" value "]" for each value, in order.
std::string indexSuffix(const IndexTuple& indices);

/// Puts it behind `name`.
void appendSuffix(std::string& name, const IndexTuple& indices);
