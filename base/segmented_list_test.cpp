#include "base/segmented_list.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <new>
#include <string>
#include <utility>
#include <vector>

namespace {

TEST(SegmentedList, HoldsItsElementsInOrder) {
  SegmentedList<std::string> list;
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

// Invariants 2 and 3.
TEST(SegmentedList, HasBlocksOfDoubleSize) {
  SegmentedList<uint64_t> list;
  EXPECT_EQ(list.bytes(), 0U);
  for (const auto& [count, elements] :
       {std::pair{1U, 8U}, {8U, 8U}, {9U, 24U}, {24U, 24U}, {25U, 56U}, {57U, 120U}}) {
    while (list.size() < count) list.add(0);
    EXPECT_EQ(list.bytes(), elements * sizeof(uint64_t)) << count;
  }
}

// Invariant 1.
TEST(SegmentedList, LeavesItsElementsWhereTheyAre) {
  SegmentedList<std::unique_ptr<int>> list;  // no copy
  std::vector<const std::unique_ptr<int>*> places;
  places.reserve(1000);
  for (int i = 0; i < 1000; ++i) places.push_back(&list.add(std::make_unique<int>(i)));
  SegmentedList<std::unique_ptr<int>> moved = std::move(list);
  for (int i = 0; i < 1000; ++i) {
    const auto place = static_cast<size_t>(i);
    EXPECT_EQ(&moved[place], places[place]);
    EXPECT_EQ(*moved[place], i);
  }
}

// An element that may find no memory when it is copied to its place.
class Reluctant {
 public:
  explicit Reluctant(int copiesToFailure) : copies_(copiesToFailure) {}
  Reluctant(const Reluctant& other) : copies_(other.copies_ - 1) {
    if (copies_ == 0) throw std::bad_alloc();
  }
  [[nodiscard]] int copies() const { return copies_; }

 private:
  int copies_;
};

// Invariant 4.
TEST(SegmentedList, IsAsBeforeWhereAnElementCannotBeAdded) {
  SegmentedList<Reluctant> list;
  for (size_t i = 0; i < 200; ++i) {  // some of them begin a block
    EXPECT_THROW(list.add(Reluctant(1)), std::bad_alloc);
    ASSERT_EQ(list.size(), i);
    EXPECT_EQ(list.add(Reluctant(static_cast<int>(i) + 1000)).copies(), static_cast<int>(i) + 999);
  }
  for (size_t i = 0; i < 200; ++i) EXPECT_EQ(list[i].copies(), static_cast<int>(i) + 999);
}

TEST(SegmentedList, BeginsAgainWhenItIsReplaced) {
  SegmentedList<std::unique_ptr<int>> list;
  for (int i = 0; i < 100; ++i) list.add(std::make_unique<int>(i));
  list = {};
  EXPECT_TRUE(list.empty());
  EXPECT_EQ(*list.add(std::make_unique<int>(7)), 7);
  EXPECT_EQ(list.size(), 1U);
  EXPECT_EQ(*list[0], 7);
}

}  // namespace
