// Name order: sorting by names, most of which begin alike. The order is that of the bytes, as in
// std::string: "p[10]" comes before "p[2]".
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <new>
#include <string_view>
#include <utility>
#include <vector>

/// The eight bytes of `name` from the byte `start` on, as a number: the first is its highest byte,
/// so two such numbers are in the order of the bytes. Behind the end of the name there are zeros,
/// so equal numbers do not mean equal names. `start` may lie behind the end; the number is then 0.
/// For the keys of sortByName().
inline uint64_t bytesAt(std::string_view name, size_t start) {
  uint64_t bytes = 0;
  for (size_t i = 0; i < sizeof bytes; ++i) {
    const size_t at = start + i;
    bytes = bytes << 8U | (at < name.size() ? static_cast<unsigned char>(name[at]) : 0U);
  }
  return bytes;
}

/// How many bytes `name` and `other` have in common at their starts: at most the length of the
/// shorter one.
inline size_t commonStart(std::string_view name, std::string_view other) {
  const size_t length = std::min(name.size(), other.size());
  const auto end = name.begin() + static_cast<std::ptrdiff_t>(length);
  return static_cast<size_t>(std::mismatch(name.begin(), end, other.begin()).first - name.begin());
}

/// Sorts `elements` by their member `name`, a std::string, ascending; equal names come in any
/// order. Used for the changes of a commit and for the ranges of a reply, most of which are
/// instances of one parameter: their names differ late and in few bytes, so one comparison of eight
/// bytes decides nearly everything. What is in order already costs one look at each element.
///
/// The elements are moved to other places, so pointers to them are not valid afterwards.
///
/// Needs room for the elements a second time. Raises no exception, because it also runs while
/// another one travels: where memory is exhausted, the elements are sorted in place, name by name.
///
/// std::sort / this, instances of one parameter: 1,000 of them 4.5, 100,000 of them 1.9
/// (docs/performance.md, "Containers").
template <typename T>
void sortByName(std::vector<T>& elements) noexcept {
  const auto comesBefore = [](const T& a, const T& b) { return a.name < b.name; };
  // Before the allocations: a commit that changes a single value ends here.
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
  // The bytes that all names begin with decide nothing, so the keys are taken from behind them.
  size_t start = elements.front().name.size();
  for (const T& element : elements) {
    start = std::min(start, commonStart(element.name, elements.front().name));
  }
  for (T& element : elements) keyed.emplace_back(bytesAt(element.name, start), &element);
  std::sort(keyed.begin(), keyed.end(), [](const auto& a, const auto& b) {
    // Equal keys: the names differ behind these bytes, or one ends where the other has a NUL.
    return a.first != b.first ? a.first < b.first : a.second->name < b.second->name;
  });
  for (const auto& [bytes, element] : keyed) sorted.push_back(std::move(*element));
  elements = std::move(sorted);
}
