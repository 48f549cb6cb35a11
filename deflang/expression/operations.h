// Operations: what the operators make of numbers and texts.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

/// Applies an operator other than OP_CONTAINS to two numbers. Arithmetic wraps to 32 bits,
/// comparisons give 1 or 0, a shift by less than 0 or more than 31 moves every bit out.
/// Nothing for a division by 0 and for what is no operator.
std::optional<int32_t> calculate(int32_t code, int32_t left, int32_t right);

/// What an operator gives when only one of its operands is defined: `defined` decides alone in
/// `0 & u`, `-1 | u`, `0 && u`, and in `5 || u`, which gives 5 and not 1. Nothing otherwise.
std::optional<int32_t> absorb(int32_t code, int32_t defined);

/// Compares two texts byte by byte, or for OP_CONTAINS looks for `right` within `left`: 1 or 0.
/// Nothing for any other operator.
std::optional<int32_t> compareTexts(int32_t code, std::string_view left, std::string_view right);
