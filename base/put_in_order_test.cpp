#include "base/put_in_order.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "tests/support/allocations.h"

namespace {

// A key to be ordered by, and where the element was at first. Moving one is counted.
struct Element {
  Element(int k, size_t p) : key(k), place(p) {}
  Element(Element&& other) noexcept : key(other.key), place(other.place) { ++moves; }
  Element& operator=(Element&& other) noexcept {
    key = other.key;
    place = other.place;
    ++moves;
    return *this;
  }

  int key;
  size_t place;
  inline static size_t moves = 0;
};

std::vector<Element> elementsOf(const std::vector<int>& keys) {
  std::vector<Element> elements;
  elements.reserve(keys.size());
  for (const int key : keys) elements.emplace_back(key, elements.size());
  return elements;
}

std::vector<int> descending(int count) {
  std::vector<int> keys;
  for (int key = count; key > 0; --key) keys.push_back(key);
  return keys;
}

struct Case {
  std::vector<int> keys;
  bool isOrdered;
};

const std::vector<Case>& cases() {
  static const std::vector<Case> all = {
      {{}, true},
      {{7}, true},
      {{1, 2, 3, 4}, true},
      {{1, 1, 2, 2}, true},  // equal ones may follow one another
      {{5, 5, 5}, true},
      {{2, 1}, false},
      {{1, 2, 3, 0}, false},  // the last one alone
      {{4, 1, 2, 3}, false},  // the first one alone
      {{3, 1, 3, 1, 2}, false},
      {descending(1000), false},  // more than a sort of a few elements
  };
  return all;
}

// Puts the elements in order, and demands that no memory is asked for: invariant 4. Returns the
// number of comparisons.
size_t comparisonsOf(std::vector<Element>& elements) {
  size_t comparisons = 0;
  Element::moves = 0;
  const size_t allocations = Allocations::count;
  putInOrder(elements, [&comparisons](const Element& a, const Element& b) {
    ++comparisons;
    return a.key < b.key;
  });
  EXPECT_EQ(Allocations::count, allocations);
  return comparisons;
}

// Invariants 1, 2 and 4.
TEST(PutInOrder, OrdersWhatWasThere) {
  for (const Case& c : cases()) {
    SCOPED_TRACE(testing::PrintToString(c.keys));
    std::vector<Element> elements = elementsOf(c.keys);
    comparisonsOf(elements);
    ASSERT_EQ(elements.size(), c.keys.size());
    std::vector<bool> seen(c.keys.size());
    for (size_t i = 0; i < elements.size(); ++i) {
      EXPECT_LE(elements[i == 0 ? 0 : i - 1].key, elements[i].key);
      EXPECT_EQ(elements[i].key, c.keys[elements[i].place]);
      EXPECT_FALSE(seen[elements[i].place]);
      seen[elements[i].place] = true;
    }
  }
}

// Invariant 3.
TEST(PutInOrder, LooksOnceAtWhatIsInOrder) {
  for (const Case& c : cases()) {
    SCOPED_TRACE(testing::PrintToString(c.keys));
    std::vector<Element> elements = elementsOf(c.keys);
    const size_t comparisons = comparisonsOf(elements);
    EXPECT_EQ(Element::moves == 0, c.isOrdered);
    if (c.isOrdered) {
      EXPECT_EQ(comparisons, c.keys.empty() ? 0 : c.keys.size() - 1);
    }
  }
}

TEST(PutInOrder, TakesAnyOrder) {
  std::vector<std::string> names = {"p[10]", "p", "p[2]"};
  putInOrder(names, std::greater<>{});
  EXPECT_EQ(names, (std::vector<std::string>{"p[2]", "p[10]", "p"}));
}

}  // namespace
