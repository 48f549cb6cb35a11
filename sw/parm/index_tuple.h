// Index tuples: the index values of one parameter instance, in index order.
#pragma once

#include <string>
#include <vector>

/// {"2", "left"} are the values of gain[2][left]. A parameter without indices has the empty tuple.
/// Each value is a text as it was written: "0x2" and "2" are two values.
using IndexTuple = std::vector<std::string>;

/// What follows the base name in a full name: "[" value "]" for each value, in order. Returns
/// "[2][left]" for {"2", "left"}, and "" for the empty tuple.
/// Values may contain brackets, so two tuples can have one suffix: {"a][b"} and {"a", "b"} both
/// have "[a][b]". So setValue() checks the number of values, also of an instance that is stored.
std::string indexSuffix(const IndexTuple& indices);

/// Appends indexSuffix(indices) to `name`. Where memory runs out (std::bad_alloc), `name` may hold
/// a part of the suffix.
void appendSuffix(std::string& name, const IndexTuple& indices);
