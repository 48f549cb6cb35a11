#include "base/hash_index.h"

#include <gtest/gtest.h>

#include <new>
#include <vector>

#include "tests/support/allocations.h"

namespace {

// The hash of an element, which here is its place. One of two that agree in their low 32 bits.
size_t scattered(uint32_t place) {
  return static_cast<size_t>(place * uint64_t{0x9e3779b97f4a7c15});
}
size_t alike(uint32_t place) { return place % 2; }
size_t alikeInLowBits(uint32_t place) { return static_cast<size_t>(uint64_t{place} << 32U); }
size_t ascending(uint32_t place) { return place; }

struct Case {
  const char* what;
  size_t (*hash)(uint32_t place);
};
constexpr Case HASHES[] = {{"scattered", scattered},
                           {"one of two", alike},
                           {"equal in 32 bits", alikeInLowBits},
                           {"ascending", ascending}};

constexpr uint32_t COUNT = 300;

// Invariant 1: the search ends, for what is there and for what is not.
TEST(HashIndex, FindsWhatWasAdded) {
  for (const auto& [what, hash] : HASHES) {
    SCOPED_TRACE(what);
    HashIndex index;
    for (uint32_t place = 0; place < COUNT; ++place) {
      const auto isIt = [place](uint32_t other) { return other == place; };
      EXPECT_EQ(index.find(hash(place), isIt), std::nullopt);
      index.add(hash(place), place);
      EXPECT_EQ(index.find(hash(place), isIt), place);
    }
    for (uint32_t place = 0; place < COUNT; ++place) {
      EXPECT_EQ(index.find(hash(place), [place](uint32_t other) { return other == place; }), place);
    }
    EXPECT_EQ(index.find(hash(COUNT), [](uint32_t /*other*/) { return false; }), std::nullopt);
  }
}

// Invariant 2.
TEST(HashIndex, AsksOnlyForElementsWithTheHash) {
  HashIndex index;
  for (uint32_t place = 0; place < COUNT; ++place) index.add(place % 7, place);
  std::vector<uint32_t> asked;
  EXPECT_EQ(index.find(3,
                       [&](uint32_t place) {
                         asked.push_back(place);
                         return false;
                       }),
            std::nullopt);
  EXPECT_EQ(asked.size(), (COUNT - 3 + 6) / 7);
  for (const uint32_t place : asked) EXPECT_EQ(place % 7, 3U);
}

// Invariant 1: eight bytes a slot.
TEST(HashIndex, HasTwiceTheSlotsAtLeast) {
  HashIndex index;
  EXPECT_EQ(index.bytes(), 0U);
  for (uint32_t place = 0; place < COUNT; ++place) {
    index.add(place, place);
    const size_t slots = index.bytes() / 8;
    EXPECT_GE(slots, 16U);
    EXPECT_GE(slots, size_t{2} * (place + 1));
    EXPECT_LT(slots, std::max(size_t{17}, size_t{4} * (place + 1) + 1));
    EXPECT_EQ(slots & (slots - 1), 0U);
  }
}

// Invariant 4.
TEST(HashIndex, CannotFailWhereRoomWasMade) {
  for (const uint32_t more : {1U, 8U, 9U, COUNT}) {
    SCOPED_TRACE(more);
    HashIndex index;
    index.add(1, 0);
    index.makeRoom(more);
    Allocations::left = 0;
    for (uint32_t place = 1; place <= more; ++place) index.add(place, place);
    Allocations::left = SIZE_MAX;
    EXPECT_EQ(index.find(more, [&](uint32_t place) { return place == more; }), more);
  }
}

TEST(HashIndex, IsAsBeforeWhereMemoryRunsOut) {
  HashIndex index;
  for (uint32_t place = 0; place < 8; ++place) index.add(place, place);  // half of 16 slots
  Allocations::left = 0;
  EXPECT_THROW(index.add(8, 8), std::bad_alloc);
  Allocations::left = SIZE_MAX;
  for (uint32_t place = 0; place < 8; ++place) {
    EXPECT_EQ(index.find(place, [](uint32_t /*place*/) { return true; }), place);
  }
  EXPECT_EQ(index.find(8, [](uint32_t /*place*/) { return true; }), std::nullopt);
}

}  // namespace
