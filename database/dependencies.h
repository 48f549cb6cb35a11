// Dependencies: the names that a parameter depends on, directly or through others.
#pragma once

#include <set>
#include <string>
#include <string_view>

#include "database/database.h"
#include "sw/parm/index_tuple.h"

/// Results of dependencies.
enum dependenciesResult_t : int {
  DEPENDENCIES_FOUND = 0,
  DEPENDENCIES_NO_PARAMETER = 1,
  DEPENDENCIES_INVALID_INDEX = 2,
};

/// Finds the names that a parameter depends on, as they are written in its expressions and in those
/// of the parameters they lead to. With `withIndices`, `name` is a full name, and each name is
/// given the index values that it shares with it, or, behind an instance that the text names, with
/// that instance. Returns a dependenciesResult_t; an index is
/// invalid when the number of index values or one of them does not fit the index definitions.
int dependencies(Database& database, std::string_view name, bool withIndices,
                 std::set<std::string>& out);
