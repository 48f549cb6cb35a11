#include "base/work.h"

#include <gtest/gtest.h>

TEST(Work, CountsUpToTheBudgetAndNotBeyond) {
  Work::begin(10);
  Work::add(4);
  EXPECT_EQ(Work::done(), 4U);
  EXPECT_TRUE(Work::allows(6));
  EXPECT_FALSE(Work::allows(7));
  Work::add(6);
  EXPECT_EQ(Work::done(), 10U);
  EXPECT_THROW(Work::add(1), WorkExceeded);
}

TEST(Work, LeavesNothingWhereTheBudgetWasPassed) {
  Work::begin(10);
  EXPECT_THROW(Work::add(11), WorkExceeded);
  EXPECT_FALSE(Work::allows(1));
  Work::add(0);
  Work::begin(10);
  EXPECT_TRUE(Work::allows(10));
}

TEST(Work, OfWhatWasSpentAlreadyRaisesNothing) {
  Work::begin(10);
  Work::addSpent(4);
  EXPECT_EQ(Work::done(), 4U);
  Work::addSpent(UINT64_MAX);
  EXPECT_EQ(Work::done(), 10U);
}

TEST(Work, TellsWhereTheBudgetWasPassedAndHowMuchWasWanted) {
  const std::string name = "gain";
  Work::begin(10);
  Work::spendOn(name);
  Work::add(4);
  EXPECT_THROW(Work::add(7), WorkExceeded);
  EXPECT_EQ(Work::exceededText(), R"(work: ERROR "gain": 11 units of work, 10 allowed)");
  Work::begin(1);
  EXPECT_THROW(Work::add(UINT64_MAX), WorkExceeded);
  EXPECT_EQ(Work::exceededText(),
            R"(work: ERROR "": 18446744073709551615 units of work, 1 allowed)");
}

TEST(Work, OfSumsAndProductsStaysAtTheLargestNumber) {
  EXPECT_EQ(addedWork(2, 3), 5U);
  EXPECT_EQ(addedWork(UINT64_MAX, 1), UINT64_MAX);
  EXPECT_EQ(multipliedWork(2, 3), 6U);
  EXPECT_EQ(multipliedWork(UINT64_MAX / 2 + 1, 2), UINT64_MAX);
  EXPECT_EQ(multipliedWork(UINT64_MAX, 0), 0U);
}
