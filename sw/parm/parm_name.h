// Parameter names: a base name, and for one instance a "[" value "]" for each of its indices.
#pragma once

#include <string>
#include <string_view>

#include "sw/parm/index_tuple.h"

/// A full name taken apart.
struct ParmName {
  std::string base;
  IndexTuple indices;
};

/// The base name in `name`: what is before the first "[".
std::string_view baseName(std::string_view name);

/// Takes `name` apart: each text from a "[" to the next "]" is an index value; the walk ends where
/// either bracket is missing, so "a[1" has no indices.
ParmName splitName(std::string_view name);

/// The base name followed by "[" value "]" for each index value.
std::string fullName(std::string_view base, const IndexTuple& indices);

/// Whether the base name or an index value in `name` is longer than a value may be.
bool hasTooLongPart(std::string_view name);

/// The reserved name of the value under test; it is never looked up.
constexpr std::string_view THIS_VALUE = "sw::this";
