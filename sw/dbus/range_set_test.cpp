#include "sw/dbus/range_set.h"

#include <gtest/gtest.h>

#include "base/value_limit.h"
#include "base/work.h"
#include "database/range_query.h"
#include "sw/dbus/errors.h"
#include "sw/dbus/reply.h"
#include "tests/support/allocations.h"
#include "tests/support/database.h"

namespace {

constexpr std::string_view TEXT = R"(
in index { rangeValid { 1..2 } }
a rw { rangeValid { 0..9, 20..29 } }
b rw { index { in } rangeValid { "x", "y" } }
free rw { }
)";

class RangeSetTest : public testing::Test {
 protected:
  void SetUp() override { define(database_, TEXT); }

  Database database_;
  Transaction transaction_{database_};
  RangeSet ranges_{transaction_};
};

TEST_F(RangeSetTest, HoldsEachNameOnceInNameOrder) {
  for (const char* name : {"free", "b[2]", "a", "b[1]", "a", "b[2]"}) {
    EXPECT_EQ(ranges_.add(name), RANGE_FOUND) << name;
  }
  std::vector<std::string> seen;
  for (const auto& [name, bounds] : ranges_.inNameOrder()) {
    seen.push_back(std::string(name) + ":" + std::to_string(bounds->count()));
  }
  EXPECT_EQ(seen, (std::vector<std::string>{"a:2", "b[1]:2", "b[2]:2", "free:0"}));
}

TEST_F(RangeSetTest, EvaluatesAnInstanceOnceHoweverItIsSpelled) {
  const std::vector<std::string> spellings = {"b[1]",  "b[1]x",   "b[1]]",
                                              "b[1][", "b[1] [x", "b[1]y"};
  for (const std::string& spelling : spellings) {
    EXPECT_EQ(ranges_.add(spelling), RANGE_FOUND) << spelling;
  }
  const std::vector<RangeSet::NamedRange>& ranges = ranges_.inNameOrder();
  ASSERT_EQ(ranges.size(), spellings.size());
  for (const auto& [name, bounds] : ranges) EXPECT_EQ(bounds, ranges.front().bounds) << name;
  EXPECT_EQ(ranges_.add("b[2]"), RANGE_FOUND);
  EXPECT_NE(ranges_.inNameOrder()[spellings.size()].bounds, ranges.front().bounds);
}

TEST_F(RangeSetTest, KnowsAFullNameThatWasFirstSpelledInAnotherWay) {
  EXPECT_EQ(ranges_.add("a[0"), RANGE_FOUND);
  EXPECT_EQ(ranges_.add("a"), RANGE_FOUND);
  EXPECT_EQ(ranges_.inNameOrder().size(), 2U);
}

TEST_F(RangeSetTest, HandsOnWhatARangeQueryRefuses) {
  EXPECT_EQ(ranges_.add("a"), RANGE_FOUND);
  EXPECT_EQ(ranges_.add("unknown"), RANGE_INVALID_NAME);
  EXPECT_EQ(ranges_.add("b[3]"), RANGE_INVALID_NAME);
}

TEST_F(RangeSetTest, CountsEachNameAlsoWhereItIsKnown) {
  EXPECT_EQ(ranges_.add("b[1]"), RANGE_FOUND);
  Work::begin();
  EXPECT_EQ(ranges_.add("b[1]"), RANGE_FOUND);
  EXPECT_EQ(Work::done(), 304U);
}

// Whether the ranges are few or many, names take memory too.
TEST_F(RangeSetTest, EndsWhereTheReplyWouldTakeTooMuch) {
  for (const std::string base : {"a", "free"}) {
    SCOPED_TRACE(base);
    RangeSet ranges(transaction_);
    std::vector<std::string> names;
    const size_t enough = MAX_REPLY_MEMORY / 256;
    names.reserve(enough);
    int result = RANGE_FOUND;
    while (result == RANGE_FOUND && names.size() < enough) {
      names.push_back(base + "[" + std::to_string(names.size()));
      result = ranges.add(names.back());
    }
    EXPECT_EQ(result, base == "a" ? INTERNAL_ERROR : RANGE_FOUND);
    EXPECT_EQ(ranges.add(base + "[x"), INTERNAL_ERROR);
  }
}

TEST_F(RangeSetTest, PutsNoFullNameTogetherAgain) {
  Database database;
  define(database, "any index { }\np rw { index { any } }\n");
  Transaction transaction(database);
  RangeSet ranges(transaction);
  const std::string value(1000, 'x');
  const std::string names[] = {"p[first" + value + "]x", "p[" + value + "]",
                               "p[other" + value + "]x"};
  size_t taken[3] = {};
  for (size_t i = 0; i < 3; ++i) {
    const size_t before = Allocations::live;
    EXPECT_EQ(ranges.add(names[i]), RANGE_FOUND);
    taken[i] = Allocations::live - before;
  }
  EXPECT_LT(taken[1] + 1, taken[2]);  // neither a place in the table nor a text
}

TEST_F(RangeSetTest, CountsANameForEachOfItsSpans) {
  constexpr size_t LENGTH = 1000;
  constexpr size_t EACH = 256 + 2 * (STRUCT_MEMORY + LENGTH);  // beside the name, two spans
  std::vector<std::string> names;
  names.reserve(MAX_REPLY_MEMORY / EACH + 1);
  int result = RANGE_FOUND;
  while (result == RANGE_FOUND && names.size() < names.capacity()) {
    std::string name = "a[" + std::to_string(names.size());
    name.append(LENGTH - name.size(), 'x');
    names.push_back(std::move(name));
    result = ranges_.add(names.back());
  }
  EXPECT_EQ(result, INTERNAL_ERROR);
  EXPECT_EQ(names.size(), MAX_REPLY_MEMORY / EACH + 1);
}

// Texts take memory for each name that has them.
TEST_F(RangeSetTest, CountsTheTextsOfEachName) {
  Database database;
  define(database, "wide rw { rangeValid { \"" + std::string(MAX_VALUE_BYTES, 'x') + "\" } }\n");
  Transaction transaction(database);
  RangeSet ranges(transaction);
  std::vector<std::string> names;
  const size_t fitting = MAX_REPLY_MEMORY / MAX_VALUE_BYTES - 1;
  names.reserve(fitting + 1);
  for (size_t i = 0; i <= fitting; ++i) {
    names.push_back("wide[" + std::to_string(i));
    EXPECT_EQ(ranges.add(names.back()), i < fitting ? RANGE_FOUND : INTERNAL_ERROR);
  }
}

}  // namespace
