#include "deflang/name_table.h"

#include <gtest/gtest.h>

namespace {

TEST(NameTable, NumbersNamesInTheOrderInWhichTheyAreAdded) {
  NameTable table;
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

}  // namespace
