// Text maps: unordered maps keyed by text that are asked by views without a copy.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>

struct TextHash {
  using is_transparent = void;
  size_t operator()(std::string_view text) const { return std::hash<std::string_view>{}(text); }
};

template <typename T>
using TextMap = std::unordered_map<std::string, T, TextHash, std::equal_to<>>;
