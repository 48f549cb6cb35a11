#include "base/interner.h"

#include <gtest/gtest.h>

#include <new>
#include <utility>

#include "tests/support/allocations.h"
#include "tests/support/names.h"

namespace {

// Counts on both sides of that from which on a hash index is kept.
constexpr uint32_t COUNTS[] = {0, 1, 7, 8, 9, 10, 1000};

std::string nameOf(uint32_t number) { return "n" + std::to_string(number); }

Interner internerOf(uint32_t count) {
  Interner names;
  for (uint32_t number = 0; number < count; ++number) names.intern(nameOf(number));
  return names;
}

TEST(Interner, NumbersNamesInTheOrderInWhichTheyCome) {
  Interner names;
  EXPECT_TRUE(names.empty());
  EXPECT_EQ(names.intern("mode"), 0U);
  EXPECT_EQ(names.intern("gain[1]"), 1U);
  EXPECT_EQ(names.intern("mode"), 0U);
  EXPECT_EQ(names.intern(""), 2U);
  EXPECT_FALSE(names.empty());
  EXPECT_EQ(namesOf(names), (std::vector<std::string>{"mode", "gain[1]", ""}));
  EXPECT_EQ(names.find("gain[1]"), 1U);
  EXPECT_EQ(names.find("gain"), std::nullopt);
}

// Invariants 1, 2 and 4.
TEST(Interner, ManyNamesAreFoundLikeFew) {
  for (const uint32_t count : COUNTS) {
    SCOPED_TRACE(count);
    Interner names = internerOf(count);
    EXPECT_EQ(names.size(), count);
    for (uint32_t number = 0; number < count; ++number) {
      EXPECT_EQ(names[number], nameOf(number));
      EXPECT_EQ(names.find(nameOf(number)), number);
      EXPECT_EQ(names.intern(nameOf(number)), number);
    }
    EXPECT_EQ(names.size(), count);
    EXPECT_EQ(names.find(nameOf(count)), std::nullopt);
    EXPECT_EQ(names.find("n"), std::nullopt);
    EXPECT_EQ(names.intern(""), count);
    EXPECT_EQ(names.find(""), count);
  }
}

TEST(Interner, MovesWithItsNumbers) {
  for (const uint32_t count : COUNTS) {
    Interner names = internerOf(count);
    const Interner moved = std::move(names);
    EXPECT_EQ(moved.size(), count);
    for (uint32_t number = 0; number < count; ++number) EXPECT_EQ(moved[number], nameOf(number));
  }
}

// Invariant 5, at each allocation that a new name takes.
TEST(Interner, IsAsBeforeWhereMemoryRunsOut) {
  const std::string failed(500, 'f');
  const std::string after(60, 'a');
  for (const uint32_t count : COUNTS) {
    SCOPED_TRACE(count);
    bool fails = true;
    for (size_t allocations = 0; fails; ++allocations) {
      SCOPED_TRACE(allocations);
      Interner names = internerOf(count);
      Allocations::left = allocations;
      try {
        names.intern(failed);
        fails = false;
      } catch (const std::bad_alloc&) {
      }
      Allocations::left = SIZE_MAX;
      EXPECT_EQ(names.size(), fails ? count : count + 1);
      EXPECT_EQ(names.find(failed).has_value(), !fails);
      EXPECT_EQ(names.intern(after), fails ? count : count + 1);
      for (uint32_t number = 0; number < count; ++number) EXPECT_EQ(names[number], nameOf(number));
      EXPECT_EQ(names[static_cast<uint32_t>(names.size() - 1)], after);
    }
  }
}

}  // namespace
