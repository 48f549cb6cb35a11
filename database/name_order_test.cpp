#include "database/name_order.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

#include "tests/support/allocations.h"

namespace {

struct Named {
  std::string name;
  int number = 0;
  bool operator==(const Named&) const = default;
};

std::vector<Named> namedAll(const std::vector<std::string>& names) {
  std::vector<Named> elements;
  elements.reserve(names.size());
  for (const std::string& name : names) {
    elements.push_back({name, static_cast<int>(elements.size())});
  }
  return elements;
}

TEST(BytesAt, OrderAsTheNamesDo) {
  EXPECT_EQ(bytesAt("", 0), 0U);
  EXPECT_EQ(bytesAt("ab", 0), 0x6162000000000000U);
  EXPECT_EQ(bytesAt("ab", 1), 0x6200000000000000U);
  EXPECT_EQ(bytesAt("ab", 2), 0U);
  EXPECT_EQ(bytesAt("\xff", 0), 0xff00000000000000U);
  EXPECT_EQ(bytesAt("123456789", 0), 0x3132333435363738U);
}

TEST(CommonStart, IsCountedInBytes) {
  EXPECT_EQ(commonStart("", "a"), 0U);
  EXPECT_EQ(commonStart("p[1]", "p[10]"), 3U);
  EXPECT_EQ(commonStart("p[1]", "p[1]"), 4U);
  EXPECT_EQ(commonStart("p", "p[1]"), 1U);
}

TEST(SortByName, OrdersAsComparingTheNamesDoes) {
  const std::vector<std::string> cases[] = {
      {},
      {"a"},
      {"b", "a"},
      {"p[10]", "p[1]", "p[2]", "p"},
      {"p[1]", "p[10]", "p[100]", "p[11]"},  // in the order of the index values
      {"same start for all, then 2", "same start for all, then 12", "same start for all, then 1"},
      {"a long common part b", "a long common part a", "other"},
      {std::string("a\0", 2), "a", std::string("a\0\0", 3)},
      {"\xff", "a", "\x80", ""},
      {"twice", "once", "twice"},
  };
  for (const std::vector<std::string>& names : cases) {
    SCOPED_TRACE(testing::PrintToString(names));
    std::vector<Named> elements = namedAll(names);
    std::vector<std::string> expected = names;
    std::sort(expected.begin(), expected.end());
    sortByName(elements);
    ASSERT_EQ(elements.size(), expected.size());
    for (size_t i = 0; i < expected.size(); ++i) {
      EXPECT_EQ(elements[i].name, expected[i]);
      // What belongs to the name came along.
      EXPECT_EQ(names[static_cast<size_t>(elements[i].number)], elements[i].name);
    }
  }
}

TEST(SortByName, OrdersWithoutMemoryToo) {
  for (const size_t allocations : {size_t{0}, size_t{1}}) {
    SCOPED_TRACE(allocations);
    std::vector<Named> elements = namedAll({"p[10]", "p[1]", "p[2]", "p"});
    Allocations::left = allocations;
    sortByName(elements);
    Allocations::left = SIZE_MAX;
    EXPECT_EQ(elements, (std::vector<Named>{{"p", 3}, {"p[10]", 0}, {"p[1]", 1}, {"p[2]", 2}}));
  }
}

TEST(SortByName, OrdersRandomNames) {
  std::mt19937 random(4711);
  for (int round = 0; round < 200; ++round) {
    std::vector<std::string> names(random() % 50);
    for (std::string& name : names) {
      name = std::string(random() % 20, 'p');
      for (size_t i = random() % 4; i > 0; --i) name += static_cast<char>(random() % 3 + 'a');
    }
    std::vector<Named> elements = namedAll(names);
    sortByName(elements);
    std::sort(names.begin(), names.end());
    ASSERT_EQ(elements.size(), names.size());
    for (size_t i = 0; i < names.size(); ++i) ASSERT_EQ(elements[i].name, names[i]);
  }
}

}  // namespace
