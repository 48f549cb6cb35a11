// Name order: sorting by names, most of which begin alike.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <new>
#include <string_view>
#include <utility>
#include <vector>

/// The next eight bytes of `name` behind `start`, as a number that is ordered as they are; zeros
/// behind its end.
inline uint64_t bytesAt(std::string_view name, size_t start) {
  uint64_t bytes = 0;
  for (size_t i = 0; i < sizeof bytes; ++i) {
    const size_t at = start + i;
    bytes = bytes << 8U | (at < name.size() ? static_cast<unsigned char>(name[at]) : 0U);
  }
  return bytes;
}

/// How many bytes `name` and `other` have in common at their starts.
inline size_t commonStart(std::string_view name, std::string_view other) {
  const size_t length = std::min(name.size(), other.size());
  const auto end = name.begin() + static_cast<std::ptrdiff_t>(length);
  return static_cast<size_t>(std::mismatch(name.begin(), end, other.begin()).first - name.begin());
}

/// Sorts `elements` by their member `name`, ascending in byte order. The names of the instances of
/// one parameter differ late and in few bytes, so that comparing these as one number decides nearly
/// everything. Raises no exception: where memory is exhausted, the names are compared as they are.
template <typename T>
void sortByName(std::vector<T>& elements) noexcept {
  const auto comesBefore = [](const T& a, const T& b) { return a.name < b.name; };
  if (std::is_sorted(elements.begin(), elements.end(), comesBefore)) return;
  std::vector<std::pair<uint64_t, T*>> keyed;
  std::vector<T> sorted;
  try {
    keyed.reserve(elements.size());
    sorted.reserve(elements.size());
  } catch (const std::bad_alloc&) {
    std::sort(elements.begin(), elements.end(), comesBefore);
    return;
  }
  size_t start = elements.front().name.size();
  for (const T& element : elements) {
    start = std::min(start, commonStart(element.name, elements.front().name));
  }
  for (T& element : elements) keyed.emplace_back(bytesAt(element.name, start), &element);
  std::sort(keyed.begin(), keyed.end(), [](const auto& a, const auto& b) {
    return a.first != b.first ? a.first < b.first : a.second->name < b.second->name;
  });
  for (const auto& [bytes, element] : keyed) sorted.push_back(std::move(*element));
  elements = std::move(sorted);
}
