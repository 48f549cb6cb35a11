// Hash index: finds the elements of a sequence by a hash, and keeps nothing else of them.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

/// For elements that live elsewhere, in a sequence of their own: their hashes and places, by open
/// addressing with linear probing.
///
/// Invariants:
/// 1. The number of slots is 0 or a power of two from 16, at least twice the number of elements.
///    So a search ends, mostly at its first slot.
/// 2. No element is looked at before its hash agrees in 32 bits: the caller's test runs about once
///    in a search that finds, and hardly ever in one that does not.
/// 3. Elements are never removed, and their places never change.
/// 4. After makeRoom(n), the next n calls of add() cannot fail. Where memory runs out
///    (std::bad_alloc), the index is as before.
///
/// Library / this: boost::unordered_flat_set 1.1 to 1.3 for sixteen look-ups together, 0.5 to 1.1
/// one by one, 0.7 to 2.1 adding; absl::flat_hash_set 1.3 to 1.5, 0.75 to 1.25, 1.8 to 6.2
/// (docs/performance.md, "Containers").
class HashIndex {
 public:
  /// The place of the element with this hash for which `isIt(place)` is true, or nullopt. The test
  /// has to compare the element itself, as different elements may have equal hashes. Constant time
  /// on average.
  template <typename IsIt>
  [[nodiscard]] std::optional<uint32_t> find(size_t hash, const IsIt& isIt) const {
    if (slots_.empty()) return std::nullopt;
    const auto shortHash = static_cast<uint32_t>(hash);
    for (size_t at = hash & mask(); slots_[at].entry != 0; at = (at + 1) & mask()) {
      const uint32_t place = slots_[at].entry - 1;
      if (slots_[at].hash == shortHash && isIt(place)) return place;
    }
    return std::nullopt;
  }
  /// Has the slot where the search for this hash begins brought into the cache, for a find() that
  /// is still some way off. Inlined always: the compiler takes a function that does nothing else
  /// for one without effect, and drops the calls.
  [[gnu::always_inline]] void prefetch(size_t hash) const {
    if (!slots_.empty()) __builtin_prefetch(&slots_[hash & mask()]);
  }
  /// The memory of the slots, in bytes.
  [[nodiscard]] size_t bytes() const { return slots_.capacity() * sizeof(Slot); }
  /// Makes room for `more` elements. Owners call it before they store an element in their sequence,
  /// so that the add() behind it cannot fail; a commit also calls it for all that it will stage.
  void makeRoom(size_t more = 1) {
    size_t size = std::max(slots_.size(), FIRST_SLOTS);
    while (size < (count_ + more) * SLOTS_PER_ELEMENT) size *= 2;
    if (size > slots_.size()) resize(size);
  }
  /// Adds an element that is not there yet; `place` is less than 2^32 - 1. At most 2^31 elements.
  void add(size_t hash, uint32_t place) {
    makeRoom();
    put({static_cast<uint32_t>(hash), place + 1});
    ++count_;
  }

 private:
  static constexpr size_t SLOTS_PER_ELEMENT = 2;
  static constexpr size_t FIRST_SLOTS = 16;  // a power of two, as every size

  struct Slot {
    uint32_t hash = 0;
    uint32_t entry = 0;  // the place plus 1; 0 in an empty slot
  };

  [[nodiscard]] size_t mask() const { return slots_.size() - 1; }
  // There is a free slot: the caller has made room.
  void put(Slot slot) {
    size_t at = slot.hash & mask();
    while (slots_[at].entry != 0) at = (at + 1) & mask();
    slots_[at] = slot;
  }
  // The elements are not asked again: the 32 bits of the hash in a slot tell its new place as long
  // as there are at most 2^32 slots. Hence the limit of add().
  void resize(size_t size) {
    std::vector<Slot> old(size);
    std::swap(old, slots_);
    for (const Slot& slot : old) {
      if (slot.entry != 0) put(slot);
    }
  }

  std::vector<Slot> slots_;
  size_t count_ = 0;
};
