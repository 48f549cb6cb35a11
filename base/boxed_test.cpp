#include "base/boxed.h"

#include <gtest/gtest.h>

#include <new>
#include <string>
#include <utility>

#include "tests/support/allocations.h"

namespace {

using BoxedText = Boxed<std::string>;

BoxedText boxed(const std::string& text) {
  BoxedText box;
  box.change() = text;
  return box;
}

// Invariant 1.
TEST(Boxed, TakesAPointerUntilItIsChanged) {
  EXPECT_EQ(sizeof(BoxedText), sizeof(void*));
  const BoxedText one;
  const BoxedText other;
  Allocations::left = 0;
  EXPECT_EQ(one.get(), "");
  EXPECT_EQ(one->size(), 0U);
  Allocations::left = SIZE_MAX;
  EXPECT_EQ(&one.get(), &other.get());
}

TEST(Boxed, HoldsWhatItWasChangedTo) {
  BoxedText box = boxed("a");
  EXPECT_EQ(box.get(), "a");
  box.change() += "b";
  EXPECT_EQ(*box.operator->(), "ab");
}

TEST(Boxed, TakesAValue) {
  EXPECT_EQ(BoxedText(std::string("a")).get(), "a");
  Allocations::left = 0;
  const BoxedText box{std::string()};
  Allocations::left = SIZE_MAX;
  EXPECT_EQ(box.get(), "");
}

// Invariant 2.
TEST(Boxed, ACopyIsItsOwn) {
  BoxedText box = boxed("a");
  BoxedText copy = box;
  copy.change() += "b";
  EXPECT_EQ(box.get(), "a");
  EXPECT_EQ(copy.get(), "ab");
  copy = BoxedText();
  EXPECT_EQ(copy.get(), "");
  const BoxedText fresh = copy;
  EXPECT_EQ(fresh.get(), "");
}

TEST(Boxed, AMoveTakesTheValue) {
  BoxedText box = boxed("a");
  BoxedText moved = std::move(box);
  EXPECT_EQ(moved.get(), "a");
  EXPECT_EQ(box.get(), "");  // NOLINT(bugprone-use-after-move): it is fresh again
  box = std::move(moved);
  EXPECT_EQ(box.get(), "a");
}

// Invariant 3.
TEST(Boxed, IsAsBeforeWhereMemoryRunsOut) {
  const BoxedText full = boxed("a");
  BoxedText box;
  Allocations::left = 0;
  EXPECT_THROW(box.change(), std::bad_alloc);
  EXPECT_THROW(box = full, std::bad_alloc);
  Allocations::left = SIZE_MAX;
  EXPECT_EQ(box.get(), "");
}

}  // namespace
