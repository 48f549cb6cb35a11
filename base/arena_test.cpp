#include "base/arena.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace {

TEST(Arena, KeepsCopies) {
  Arena arena;
  std::string text = "text";
  const std::string_view kept = arena.keepText(text);
  text = "else";
  EXPECT_EQ(kept, "text");
  std::vector<int> numbers = {1, 2, 3};
  const std::span<const int> list = arena.keepList(std::span<const int>(numbers));
  numbers = {4, 5, 6};
  EXPECT_EQ(std::vector<int>(list.begin(), list.end()), (std::vector<int>{1, 2, 3}));
}

TEST(Arena, KeepsWhatIsEmpty) {
  Arena arena;
  EXPECT_EQ(arena.keepText(""), "");
  EXPECT_NE(arena.keepText("").data(), nullptr);
  EXPECT_TRUE(arena.keepList(std::span<const int>()).empty());
}

// Invariant 1.
TEST(Arena, LeavesEverythingWhereItIs) {
  Arena arena;
  std::vector<std::string_view> kept;
  kept.reserve(1000);
  for (int i = 0; i < 1000; ++i) kept.push_back(arena.keepText(std::to_string(i)));
  const Arena moved = std::move(arena);
  for (int i = 0; i < 1000; ++i) EXPECT_EQ(kept[static_cast<size_t>(i)], std::to_string(i));
}

// Invariant 2.
TEST(Arena, AlignsEachList) {
  Arena arena;
  for (int i = 0; i < 10; ++i) {
    arena.keepText("x");
    const uint64_t number = 7;
    const std::span<const uint64_t> list = arena.keepList(std::span(&number, 1));
    EXPECT_EQ(reinterpret_cast<uintptr_t>(list.data()) % alignof(uint64_t), 0U);
  }
}

}  // namespace
