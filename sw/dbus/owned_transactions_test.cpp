#include "sw/dbus/owned_transactions.h"

#include <gtest/gtest.h>

namespace {

TEST(OwnedTransactions, AreHiddenFromOthers) {
  OwnedTransactions owned;
  EXPECT_FALSE(owned.isHiddenFrom(1, ":1.1"));
  owned.add(1, ":1.1");
  owned.add(2, ":1.1");
  owned.add(3, ":1.2");
  EXPECT_FALSE(owned.isHiddenFrom(1, ":1.1"));
  EXPECT_TRUE(owned.isHiddenFrom(1, ":1.2"));
  EXPECT_TRUE(owned.isHiddenFrom(1, ""));
  EXPECT_FALSE(owned.isHiddenFrom(4, ":1.2"));
  EXPECT_EQ(*owned.ownerOf(3), ":1.2");
  EXPECT_EQ(owned.ownerOf(4), nullptr);
  EXPECT_EQ(owned.countOf(":1.1"), 2U);
  EXPECT_EQ(owned.countOf(":1.3"), 0U);
}

TEST(OwnedTransactions, BelongToNobodyAfterTheirEnd) {
  OwnedTransactions owned;
  owned.add(1, ":1.1");
  owned.add(2, ":1.1");
  owned.remove(1);
  owned.remove(7);
  EXPECT_EQ(owned.ownerOf(1), nullptr);
  EXPECT_EQ(*owned.transactionsOf(":1.1"), std::set<uint32_t>{2});
  owned.remove(2);
  EXPECT_EQ(owned.transactionsOf(":1.1"), nullptr);
}

}  // namespace
