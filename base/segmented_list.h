// Segmented list: a sequence that grows at its end, and whose elements stay where they are.
#pragma once

#include <bit>
#include <cstddef>
#include <utility>
#include <vector>

/// For what others point to while more is added: the parameters and sources of a database, the
/// staged entries of a transaction, the committed values of a parameter.
///
/// Invariants:
/// 1. An element stays where it is as long as the list lives, also where the list is moved.
/// 2. Block b has room for 8 * 2^b elements, and is full before the next one begins. So the table
///    of the blocks is short enough to be in the cache always, where that of a deque is one more
///    wait for memory.
/// 3. An empty list takes no memory.
/// 4. Where memory runs out (std::bad_alloc), or an element cannot be moved, the list is as before.
///
/// Library / this: std::deque 1.14 to 1.19 in commits, 0.92 to 1.24 finding by name, 1.06 to 1.36
/// building; boost::container::deque 1.01 to 1.31, 0.94 to 1.13, 1.03 to 1.18
/// (docs/performance.md, "Containers").
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
  /// The memory of the elements, used or not, in bytes, without what they refer to.
  [[nodiscard]] size_t bytes() const { return firstOf(blocks_.size()) * sizeof(T); }
  /// The element at `place`, which is less than size().
  [[nodiscard]] const T& operator[](size_t place) const {
    const size_t block = blockOf(place);
    return blocks_[block][place - firstOf(block)];
  }
  [[nodiscard]] T& operator[](size_t place) { return const_cast<T&>(std::as_const(*this)[place]); }
  /// Adds an element at the end. The reference holds as long as the list lives and is not assigned
  /// to. Allocates only where a block begins: log2(n / 8 + 1) times, rounded up, for n elements.
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

  // Blocks 0, 1, 2 begin at 0, 8, 24: a place is found by the highest bit of place / 8 + 1, without
  // a search.
  static size_t blockOf(size_t place) {
    return static_cast<size_t>(std::bit_width(place / FIRST_BLOCK + 1)) - 1;
  }
  static size_t firstOf(size_t block) { return ((size_t{1} << block) - 1) * FIRST_BLOCK; }

  std::vector<std::vector<T>> blocks_;
};
