#include "base/fixed_list.h"

#include <gtest/gtest.h>

namespace {

std::vector<int> elementsOf(FixedList<int>& list) {
  const std::span<int> all = list.all();
  return {all.begin(), all.end()};
}

TEST(FixedList, HoldsTheElementsOfAVector) {
  FixedList<int> none;
  EXPECT_EQ(elementsOf(none), std::vector<int>{});
  FixedList<int> empty(std::vector<int>{});
  EXPECT_EQ(elementsOf(empty), std::vector<int>{});
  FixedList<int> list({1, 2, 3});
  EXPECT_EQ(elementsOf(list), (std::vector<int>{1, 2, 3}));
  list.all()[1] = 7;
  EXPECT_EQ(std::as_const(list).all()[1], 7);
}

TEST(FixedList, LeavesNothingWhereItIsTakenFrom) {
  FixedList<int> list({1, 2});
  FixedList<int> made(std::move(list));
  EXPECT_EQ(elementsOf(made), (std::vector<int>{1, 2}));
  EXPECT_EQ(elementsOf(list), std::vector<int>{});  // NOLINT(bugprone-use-after-move)
  FixedList<int> assigned({3, 4, 5});
  assigned = std::move(made);
  EXPECT_EQ(elementsOf(assigned), (std::vector<int>{1, 2}));
  EXPECT_EQ(elementsOf(made), std::vector<int>{});  // NOLINT(bugprone-use-after-move)
}

}  // namespace
