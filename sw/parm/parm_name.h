// Parameter names: a base name, and for one instance a "[" value "]" for each of its indices.
//
//   gain            the base name; also the full name where the parameter has no indices
//   gain[2][left]   a full name: the instance of gain with the index values "2" and "left"
#pragma once

#include <string>
#include <string_view>

#include "sw/parm/index_tuple.h"

/// A full name taken apart. It owns its texts.
struct ParmName {
  std::string base;
  IndexTuple indices;
};

/// The base name in `name`: all that is before the first "[", or all of `name`. It may be empty.
/// Returns a view of `name`. Allocates nothing.
std::string_view baseName(std::string_view name);

/// Takes `name` apart: each text from a "[" to the next "]" is an index value. The walk ends where
/// either bracket is missing, and text between "]" and "[" is dropped. Every text has a result:
///
///   name            base      index values
///   gain[2][left]   gain      2, left
///   gain[]          gain      one, the empty text
///   a[1             a         none
///   a[1]b[2]        a         1, 2
///   a[[1]           a         [1
///
/// Takes linear time.
ParmName splitName(std::string_view name);

/// The base name followed by "[" value "]" for each index value. splitName() gives back the same
/// parts, unless the base name contains a "[" or a value contains a "]".
std::string fullName(std::string_view base, const IndexTuple& indices);

/// Whether the base name or an index value in `name` is longer than MAX_VALUE_BYTES. Takes `name`
/// apart only where the whole of it is longer than that.
bool hasTooLongPart(std::string_view name);

/// The reserved name of the value under test, which constraint rules read. It is never looked up
/// when a value is read: a client gets an error, and any other expression finds it undefined.
constexpr std::string_view THIS_VALUE = "sw::this";
