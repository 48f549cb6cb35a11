// Text maps: unordered maps keyed by text that are asked by views without a copy.
//
//   TextMap<int> levels;
//   levels.try_emplace("gain", 7);
//   levels.find(std::string_view("gain[1]").substr(0, 4));   // makes no std::string
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>

/// Hashes a text, whichever type holds it, in time linear in its length. Equal texts have equal
/// hashes. HashIndex takes these hashes too.
struct TextHash {
  /// Tells the library that a key may be asked for by other types than the map's.
  using is_transparent = void;
  /// The hash of `text`. Allocates nothing.
  size_t operator()(std::string_view text) const { return std::hash<std::string_view>{}(text); }
};

/// A map from texts, which it owns, to T. find(), contains() and count() take views; what adds or
/// erases by a key needs a std::string. Elements stay where they are until they are erased, so
/// others may point to them.
template <typename T>
using TextMap = std::unordered_map<std::string, T, TextHash, std::equal_to<>>;
