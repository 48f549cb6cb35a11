// Position tables: find the elements of a sequence by a hash, without keeping anything of them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

/// For each element its hash and its position, by open addressing: mostly one place to look at, and
/// no element is looked at before its hash agrees.
class PositionTable {
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
  /// is still some way off.
  void prefetch(size_t hash) const {
    if (!places_.empty()) __builtin_prefetch(&places_[hash & mask()]);
  }
  /// Makes room, so that the next add() cannot fail.
  void makeRoom() {
    if (count_ * PLACES_PER_ELEMENT >= places_.size()) grow();
  }
  /// Adds an element that is not there yet.
  void add(size_t hash, uint32_t position) {
    makeRoom();
    put({static_cast<uint32_t>(hash), position + 1});
    ++count_;
  }
  void clear() {
    places_ = {};
    count_ = 0;
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
  void grow() {
    std::vector<Place> old(places_.empty() ? FIRST_PLACES : places_.size() * 2);
    std::swap(old, places_);
    for (const Place& place : old) {
      if (place.entry != 0) put(place);
    }
  }

  std::vector<Place> places_;
  size_t count_ = 0;
};
