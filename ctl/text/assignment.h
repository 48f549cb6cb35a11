// The arguments of the words: names, patterns of names, and NAME=VALUE.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "ctl/service/answers.h"

/// The place of the sign in NAME=VALUE: the first "=" outside the brackets of index values, or the
/// first of all where a bracket is not closed; npos where there is none.
size_t signOfAssignment(std::string_view text);

/// The two parts of NAME=VALUE; nullopt where there is no "=", or no name. The value may be empty.
std::optional<Assignment> assignmentOf(std::string_view text);

/// What is wrong with the brackets of a full name, for people; empty where each "[" has its "]" and
/// only another "[" is behind that. The service passes over the rest.
std::string_view faultOfBrackets(std::string_view name);

/// The name before the index values: "gain" of "gain[2]".
std::string_view baseOf(std::string_view name);
/// How many index values follow the base name.
size_t indexCountOf(std::string_view name);

/// Whether `text` is a pattern of full names: it has a "*" or a "?".
bool isNamePattern(std::string_view text);
/// Whether the pattern fits the full name, or the base name of all its instances. "*" and "?" are
/// as in a shell; brackets are those of index values.
bool fitsPattern(const std::string& pattern, const std::string& name);

/// Whether both are the same text, or the same integer, as in 0x10 and 16.
bool isSameValue(const std::string& one, const std::string& other);
