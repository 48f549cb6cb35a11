// The limit of values: what is longer is no value.
#pragma once

#include <cstddef>
#include <string_view>

/// The most bytes that a value may have. The same holds for an index value and a base name in the
/// names that clients give, and for a quoted text of a definition.
constexpr size_t MAX_VALUE_BYTES = size_t{1} << 20U;

constexpr bool isTooLong(std::string_view text) { return text.size() > MAX_VALUE_BYTES; }
