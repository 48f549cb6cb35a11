// Position tables: find the elements of a sequence by a hash, without keeping anything of them.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

/// For each element its hash and its position, by open addressing: mostly one place to look at, and
/// no element is looked at before its hash agrees.
class HashIndex {
 public:
  /// The position of the element with this hash for which `isIt` is true, or nothing.
  template <typename IsIt>
  [[nodiscard]] std::optional<uint32_t> find(size_t hash, const IsIt& isIt) const {
    if (places_.empty()) return std::nullopt;
    const auto shortHash = static_cast<uint32_t>(hash);
    for (size_t at = hash & mask(); places_[at].entry != 0; at = (at + 1) & mask()) {
      const uint32_t position = places_[at].entry - 1;
      if (places_[at].hash == shortHash && isIt(position)) return position;
    }
    return std::nullopt;
  }
  /// Has the place where the search for this hash begins brought into the cache, for a find() that
  /// is still some way off. Inlined always: the compiler takes a function that does nothing else
  /// for one without effect, and drops the calls.
  [[gnu::always_inline]] void prefetch(size_t hash) const {
    if (!places_.empty()) __builtin_prefetch(&places_[hash & mask()]);
  }
  /// The memory of the table.
  [[nodiscard]] size_t bytes() const { return places_.capacity() * sizeof(Place); }
  /// Makes room, so that the next add() cannot fail.
  void makeRoom() { makeRoom(1); }
  /// The same for the next `more` calls of add().
  void makeRoom(size_t more) {
    size_t size = std::max(places_.size(), FIRST_PLACES);
    while (size < (count_ + more) * PLACES_PER_ELEMENT) size *= 2;
    if (size > places_.size()) resize(size);
  }
  /// Adds an element that is not there yet.
  void add(size_t hash, uint32_t position) {
    makeRoom();
    put({static_cast<uint32_t>(hash), position + 1});
    ++count_;
  }

 private:
  static constexpr size_t PLACES_PER_ELEMENT = 2;
  static constexpr size_t FIRST_PLACES = 16;  // a power of two, as every size

  struct Place {
    uint32_t hash = 0;
    uint32_t entry = 0;  // the position plus 1; 0 where nothing is
  };

  [[nodiscard]] size_t mask() const { return places_.size() - 1; }
  void put(Place place) {
    size_t at = place.hash & mask();
    while (places_[at].entry != 0) at = (at + 1) & mask();
    places_[at] = place;
  }
  void resize(size_t size) {
    std::vector<Place> old(size);
    std::swap(old, places_);
    for (const Place& place : old) {
      if (place.entry != 0) put(place);
    }
  }

  std::vector<Place> places_;
  size_t count_ = 0;
};
