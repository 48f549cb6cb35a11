#include "sw/dbus/memory_reserve.h"

#include <gtest/gtest.h>

#include <new>

#include "tests/support/mappings.h"

namespace {

constexpr size_t MEBIBYTE = size_t{1} << 20U;
constexpr size_t NEVER = SIZE_MAX / 8 * 7;

TEST(MemoryReserve, TakesNothingForLittle) {
  MemoryReserve reserve;
  for (int round = 0; round < 2; ++round) {
    EXPECT_TRUE(reserve.grow(SMALL_MEMORY));
    EXPECT_EQ(Mappings::kept, 0U);
    EXPECT_TRUE(reserve.grow(SMALL_MEMORY + 1));
    EXPECT_EQ(Mappings::kept, SMALL_MEMORY + 1);
    reserve.giveBack();  // now it is as at first
  }
}

TEST(MemoryReserve, KeepsWhatItWasAskedForUntilItIsReleased) {
  {
    MemoryReserve reserve;
    EXPECT_TRUE(reserve.grow(8 * MEBIBYTE));
    EXPECT_EQ(Mappings::kept, 8 * MEBIBYTE);
    EXPECT_TRUE(reserve.grow(8 * MEBIBYTE + SMALL_MEMORY));
    EXPECT_EQ(Mappings::kept, 8 * MEBIBYTE);
    EXPECT_TRUE(reserve.grow(20 * MEBIBYTE));
    EXPECT_GE(Mappings::kept, 20 * MEBIBYTE);
    reserve.giveBack();
    EXPECT_EQ(Mappings::kept, 0U);
    EXPECT_TRUE(reserve.grow(8 * MEBIBYTE));
  }
  EXPECT_EQ(Mappings::kept, 0U);
}

TEST(MemoryReserve, KeepsWhatItHadWhereThereIsNoMore) {
  MemoryReserve reserve;
  EXPECT_TRUE(reserve.grow(8 * MEBIBYTE));
  EXPECT_FALSE(reserve.grow(NEVER));
  EXPECT_EQ(Mappings::kept, 8 * MEBIBYTE);
  EXPECT_TRUE(reserve.grow(9 * MEBIBYTE));
}

TEST(MemoryReserve, IsNotThereWhereItCannotBeHad) {
  EXPECT_NO_THROW(requireMemory(SMALL_MEMORY));
  EXPECT_NO_THROW(requireMemory(8 * MEBIBYTE));
  EXPECT_THROW(requireMemory(NEVER), std::bad_alloc);
}

}  // namespace
