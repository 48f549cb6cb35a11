#include "deflang/text/statement_list.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace {

TEST(Arena, KeepsCopies) {
  Arena memory;
  std::string text = "gain";
  const std::string_view kept = memory.keepText(text);
  const std::string_view none = memory.keepText("");
  std::vector<int> numbers = {1, 2, 3};
  const std::span<const int> list = memory.keepList<int>(numbers);
  int* const one = memory.keepOne(7);
  text = "none";
  numbers = {4, 5, 6};
  Arena owner = std::move(memory);  // what was kept stays where it is
  EXPECT_EQ(kept, "gain");
  EXPECT_TRUE(none.empty());
  EXPECT_NE(none.data(), nullptr);
  EXPECT_TRUE(std::equal(list.begin(), list.end(), std::vector<int>{1, 2, 3}.begin()));
  EXPECT_TRUE(owner.keepList(std::span<const int>()).empty());
  EXPECT_EQ(*one, 7);
}

TEST(StatementList, HoldsStatementsInOrder) {
  Arena memory;
  StatementList<int> list;
  EXPECT_TRUE(list.empty());
  EXPECT_EQ(list.begin(), list.end());
  std::vector<int> expected;
  for (const int statement : {3, 1, 2}) {
    list.add(statement, memory);
    expected.push_back(statement);
    EXPECT_FALSE(list.empty());
    EXPECT_EQ(list.front(), 3);
    EXPECT_EQ(std::vector<int>(list.begin(), list.end()), expected);
  }
  EXPECT_EQ(*list.begin()++, 3);
}

}  // namespace
