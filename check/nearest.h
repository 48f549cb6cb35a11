// Nearest names: which known name an unknown one is a slip of.
#pragma once

#include <optional>
#include <span>
#include <string_view>

/// The one of `names` that `word` most likely stands for: the one with the fewest slips, the
/// first of several. A slip is a byte too many, missing, wrong, or exchanged with its neighbour.
/// No value where every name is `word` itself or has more slips than a third of `word`'s bytes
/// (one slip is always near enough for words of two bytes and more).
std::optional<std::string_view> nearestName(std::string_view word,
                                            std::span<const std::string_view> names);
