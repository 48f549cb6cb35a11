#include "deflang/stable_list.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace {

TEST(StableList, HoldsItsElementsInOrder) {
  StableList<std::string> list;
  EXPECT_TRUE(list.empty());
  for (size_t i = 0; i < 1000; ++i) {
    EXPECT_EQ(list.size(), i);
    EXPECT_EQ(list.add(std::to_string(i)), std::to_string(i));
  }
  EXPECT_FALSE(list.empty());
  for (size_t i = 0; i < 1000; ++i) EXPECT_EQ(list[i], std::to_string(i));
  list[999] = "last";
  EXPECT_EQ(std::as_const(list)[999], "last");
}

TEST(StableList, LeavesItsElementsWhereTheyAre) {
  StableList<std::unique_ptr<int>> list;  // no copy
  std::vector<const std::unique_ptr<int>*> places;
  for (int i = 0; i < 1000; ++i) places.push_back(&list.add(std::make_unique<int>(i)));
  StableList<std::unique_ptr<int>> moved = std::move(list);
  for (int i = 0; i < 1000; ++i) {
    const auto position = static_cast<size_t>(i);
    EXPECT_EQ(&moved[position], places[position]);
    EXPECT_EQ(*moved[position], i);
  }
  EXPECT_TRUE(list.empty());
}

TEST(StableList, BeginsAgainWhenItWasCleared) {
  StableList<std::string> list;
  for (int i = 0; i < 100; ++i) list.add("old");
  list.clear();
  EXPECT_TRUE(list.empty());
  EXPECT_EQ(list.add("new"), "new");
  EXPECT_EQ(list.size(), 1U);
  EXPECT_EQ(list[0], "new");
}

}  // namespace
