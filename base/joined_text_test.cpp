#include "base/joined_text.h"

#include <gtest/gtest.h>

namespace {

TEST(JoinedText, GrowsAtBothEnds) {
  JoinedText text("m");
  EXPECT_EQ(text.view(), "m");
  text.append("n");
  EXPECT_EQ(text.view(), "mn");
  text.prepend("l");
  EXPECT_EQ(text.view(), "lmn");
  text.prepend("ijk");
  text.append("op");
  text.prepend("");
  text.append("");
  EXPECT_EQ(text.view(), "ijklmnop");
}

TEST(JoinedText, StartsEmptyWhereItMust) {
  JoinedText text("");
  EXPECT_EQ(text.view(), "");
  text.prepend("");
  EXPECT_EQ(text.view(), "");
  text.prepend("ab");
  EXPECT_EQ(text.view(), "ab");
}

// Invariants 1 and 3.
TEST(JoinedText, EveryOrderOfGrowthGivesTheSameText) {
  // Bit n says whether step n puts its letter in front.
  for (unsigned order = 0; order < 1024; ++order) {
    SCOPED_TRACE(order);
    JoinedText text("-");
    std::string expected = "-";
    for (unsigned step = 0; step < 10; ++step) {
      const std::string part(step % 3 + 1, static_cast<char>('a' + step));
      const bool inFront = (order >> step & 1) != 0;
      if (inFront) {
        text.prepend(part);
        expected.insert(0, part);
      } else {
        text.append(part);
        expected.append(part);
      }
      ASSERT_EQ(text.view(), expected);
    }
  }
}

// Invariant 2.
TEST(JoinedText, ALongChainInFrontCostsAboutItsLength) {
  JoinedText text("");
  for (int i = 0; i < 1'000'000; ++i) text.prepend("x");
  EXPECT_EQ(text.view(), std::string(1'000'000, 'x'));
}

}  // namespace
