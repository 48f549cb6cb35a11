// The limit of values: what is longer is no value.
//
// Without it, a chain of parameters whose defaults each join the text before to itself would double
// the length at each step, and a short definition text could exhaust the memory.
#pragma once

#include <cstddef>
#include <string_view>

/// The most bytes that a value may have: 1,048,576. The same holds for an index value and a base
/// name in the names that clients give, and for a quoted text of a definition.
constexpr size_t MAX_VALUE_BYTES = size_t{1} << 20U;

/// Whether `text` has more bytes than a value may have; a text of MAX_VALUE_BYTES is not too long.
constexpr bool isTooLong(std::string_view text) { return text.size() > MAX_VALUE_BYTES; }
