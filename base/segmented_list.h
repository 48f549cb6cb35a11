// Stable lists: sequences that grow at their end, and whose elements stay where they are.
#pragma once

#include <bit>
#include <cstddef>
#include <utility>
#include <vector>

/// The elements are in blocks of which each has room for twice as many as the one before it. So
/// the table of the blocks is short enough to be in the cache always, where that of a deque is one
/// more wait for memory, and an empty list takes no memory. A list can be moved, not copied.
template <typename T>
class SegmentedList {
 public:
  SegmentedList() = default;
  SegmentedList(SegmentedList&&) noexcept = default;
  SegmentedList& operator=(SegmentedList&&) noexcept = default;

  [[nodiscard]] size_t size() const {
    return blocks_.empty() ? 0 : firstOf(blocks_.size() - 1) + blocks_.back().size();
  }
  [[nodiscard]] bool empty() const { return size() == 0; }
  /// The memory of the elements, used or not, without what they refer to.
  [[nodiscard]] size_t bytes() const { return firstOf(blocks_.size()) * sizeof(T); }
  [[nodiscard]] const T& operator[](size_t position) const {
    const size_t block = blockOf(position);
    return blocks_[block][position - firstOf(block)];
  }
  [[nodiscard]] T& operator[](size_t position) {
    return const_cast<T&>(std::as_const(*this)[position]);
  }
  /// Adds an element. Where memory is exhausted, the list is as before.
  T& add(T element) {
    const size_t blocks = blocks_.size();
    if (size() == firstOf(blocks)) {
      std::vector<T> room;
      room.reserve(firstOf(blocks + 1) - firstOf(blocks));
      blocks_.push_back(std::move(room));
    }
    return blocks_.back().emplace_back(std::move(element));
  }

 private:
  static constexpr size_t FIRST_BLOCK = 8;  // elements; a power of two

  static size_t blockOf(size_t position) {
    return static_cast<size_t>(std::bit_width(position / FIRST_BLOCK + 1)) - 1;
  }
  static size_t firstOf(size_t block) { return ((size_t{1} << block) - 1) * FIRST_BLOCK; }

  std::vector<std::vector<T>> blocks_;
};
