#include "base/interner.h"

#include <gtest/gtest.h>

#include <new>

#include "tests/support/allocations.h"

namespace {

TEST(Interner, NumbersNamesInTheOrderInWhichTheyAreAdded) {
  Interner table;
  EXPECT_EQ(table.find(""), std::nullopt);
  for (uint32_t i = 0; i < 1000; ++i) table.add("n" + std::to_string(i));
  table.add("");
  EXPECT_EQ(table.size(), 1001U);
  EXPECT_EQ(table.find("n0"), 0U);
  EXPECT_EQ(table.find("n999"), 999U);
  EXPECT_EQ(table.find(""), 1000U);
  EXPECT_EQ(table.find("n1000"), std::nullopt);
  EXPECT_EQ(table.find("n99 "), std::nullopt);
  EXPECT_EQ(table[0], "n0");
  EXPECT_EQ(table[500], "n500");
  EXPECT_EQ(table[999], "n999");
  EXPECT_EQ(table[1000], "");
}

TEST(Interner, IsAsBeforeWhereMemoryIsExhausted) {
  const std::string before(50, 'b');
  const std::string failed(500, 'f');
  const std::string after(60, 'a');
  bool fails = true;
  for (size_t allocations = 0; fails; ++allocations) {
    SCOPED_TRACE(allocations);
    Interner table;
    table.add(before);
    Allocations::left = allocations;
    try {
      table.add(failed);
      fails = false;
    } catch (const std::bad_alloc&) {
    }
    Allocations::left = SIZE_MAX;
    EXPECT_EQ(table.size(), fails ? 1U : 2U);
    EXPECT_EQ(table.find(failed).has_value(), !fails);
    table.add(after);
    EXPECT_EQ(table[0], before);
    EXPECT_EQ(table[static_cast<uint32_t>(table.size() - 1)], after);
    EXPECT_EQ(table.find(after), table.size() - 1);
  }
}

}  // namespace
