#include "sw/dbus/memory_reserve.h"

#include <gtest/gtest.h>

#include <new>

#include "sw/dbus/test_addresses.h"

namespace {

constexpr size_t MEBIBYTE = size_t{1} << 20U;
constexpr size_t NEVER = SIZE_MAX / 2;

TEST(MemoryReserve, TakesNothingForLittle) {
  const size_t before = addressesTaken();
  MemoryReserve reserve;
  EXPECT_TRUE(reserve.grow(SMALL_MEMORY));
  EXPECT_EQ(addressesTaken(), before);
}

TEST(MemoryReserve, KeepsWhatItWasAskedForUntilItIsReleased) {
  const size_t before = addressesTaken();
  MemoryReserve reserve;
  EXPECT_TRUE(reserve.grow(8 * MEBIBYTE));
  EXPECT_GE(addressesTaken(), before + 8 * MEBIBYTE);
  EXPECT_TRUE(reserve.grow(20 * MEBIBYTE));
  EXPECT_GE(addressesTaken(), before + 20 * MEBIBYTE);
  reserve.release();
  EXPECT_LT(addressesTaken(), before + MEBIBYTE);
}

TEST(MemoryReserve, KeepsWhatItHadWhereThereIsNoMore) {
  const size_t before = addressesTaken();
  MemoryReserve reserve;
  EXPECT_TRUE(reserve.grow(8 * MEBIBYTE));
  EXPECT_FALSE(reserve.grow(NEVER));
  EXPECT_GE(addressesTaken(), before + 8 * MEBIBYTE);
}

TEST(MemoryReserve, IsNotThereWhereItCannotBeHad) {
  EXPECT_NO_THROW(requireMemory(SMALL_MEMORY));
  EXPECT_NO_THROW(requireMemory(8 * MEBIBYTE));
  EXPECT_THROW(requireMemory(NEVER), std::bad_alloc);
}

}  // namespace
