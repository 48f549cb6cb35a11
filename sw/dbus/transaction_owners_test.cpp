#include "sw/dbus/transaction_owners.h"

#include <gtest/gtest.h>

#include <vector>

#include "tests/support/database.h"

namespace {

constexpr size_t MEBIBYTE = size_t{1} << 20U;

class TransactionOwnersTest : public testing::Test {
 protected:
  TransactionOwnersTest() { define(database_, "in index { }\nnote rw { index { in } }\n"); }

  // A transaction of `client`'s that has about so many MiB staged.
  uint32_t open(std::string_view client, size_t mebibytes) {
    uint32_t id = 0;
    EXPECT_NE(transactions_.open(id), nullptr);
    owners_.opened(id, client);
    stage(id, mebibytes);
    return id;
  }
  void stage(uint32_t id, size_t mebibytes) {
    for (size_t i = 0; i < mebibytes; ++i) {
      const std::string name = "note[" + std::to_string(i) + "]";
      EXPECT_EQ(transactions_.find(id)->set(name, mebibyte_, false), STAGE_DONE);
    }
    owners_.used(id);
  }
  void end(uint32_t id) {
    owners_.ended(id);
    EXPECT_EQ(transactions_.end(id), 0);
  }
  std::vector<uint32_t> openOnes() {
    std::vector<uint32_t> ids;
    for (uint32_t id = 0; id < 20; ++id) {
      if (transactions_.find(id) != nullptr) ids.push_back(id);
    }
    return ids;
  }
  size_t leftMebibytes() { return owners_.leftBytes() / MEBIBYTE; }

  const std::string mebibyte_ = std::string(MEBIBYTE, 'x');
  Database database_;
  Transactions transactions_{database_};
  TransactionOwners owners_{transactions_};
};

using Ids = std::vector<uint32_t>;

TEST_F(TransactionOwnersTest, OnlyThoseOfClientsThatHaveLeftCount) {
  open("a", 20);
  open("a", 20);
  open("b", 0);
  open("b", 10);
  EXPECT_EQ(owners_.leftBytes(), 0U);
  owners_.left("c");
  EXPECT_EQ(owners_.leftBytes(), 0U);
  owners_.left("b");
  EXPECT_EQ(leftMebibytes(), 10U);
  owners_.left("b");
  EXPECT_EQ(leftMebibytes(), 10U);
  EXPECT_EQ(openOnes(), (Ids{0, 1, 2, 3}));
}

TEST_F(TransactionOwnersTest, BeyondTheLimitTheOldestAreEnded) {
  open("a", 10);
  open("b", 10);
  open("b", 10);
  open("c", 10);
  owners_.left("b");
  owners_.left("a");
  EXPECT_EQ(leftMebibytes(), 30U);
  EXPECT_EQ(openOnes(), (Ids{0, 1, 2, 3}));
  owners_.left("c");
  EXPECT_EQ(leftMebibytes(), 30U);
  EXPECT_EQ(openOnes(), (Ids{0, 2, 3}));  // b was the first to leave
}

TEST_F(TransactionOwnersTest, TheLimitHoldsToTheByte) {
  open("a", 31);
  owners_.left("a");
  const size_t rest = TransactionOwners::MAX_LEFT_BYTES - owners_.leftBytes();
  std::string value(rest - MEBIBYTE / 2, 'x');
  const uint32_t id = open("b", 0);
  EXPECT_EQ(transactions_.find(id)->set("note", value, false), STAGE_DONE);
  owners_.left("b");
  const size_t exact = value.size() + TransactionOwners::MAX_LEFT_BYTES - owners_.leftBytes();
  for (const size_t size : {exact, exact + 1}) {
    value = std::string(size, 'x');
    EXPECT_EQ(transactions_.find(id)->set("note", value, false), STAGE_DONE);
    owners_.used(id);
    EXPECT_EQ(openOnes(), size == exact ? (Ids{0, 1}) : (Ids{1}));
  }
}

TEST_F(TransactionOwnersTest, OneThatIsTooMuchByItselfIsEnded) {
  open("a", 33);
  EXPECT_EQ(openOnes(), Ids{0});
  owners_.left("a");
  EXPECT_EQ(openOnes(), Ids{});
  EXPECT_EQ(owners_.leftBytes(), 0U);
}

TEST_F(TransactionOwnersTest, EmptyOnesCount) {
  constexpr size_t MANY = TransactionOwners::MAX_LEFT_BYTES / TransactionOwners::BYTES_OF_EMPTY;
  for (size_t i = 0; i < MANY + 3; ++i) open("a", 0);
  owners_.left("a");
  EXPECT_EQ(owners_.leftBytes(), MANY * TransactionOwners::BYTES_OF_EMPTY);
  EXPECT_EQ(transactions_.find(2), nullptr);
  EXPECT_NE(transactions_.find(3), nullptr);
}

TEST_F(TransactionOwnersTest, WhatOthersDoInThemCounts) {
  open("a", 10);
  open("b", 20);
  owners_.left("a");
  owners_.left("b");
  EXPECT_EQ(leftMebibytes(), 30U);
  transactions_.find(0)->staged().clear();
  owners_.used(0);
  EXPECT_EQ(leftMebibytes(), 20U);
  end(1);
  EXPECT_EQ(owners_.leftBytes(), TransactionOwners::BYTES_OF_EMPTY);
  stage(0, 30);
  EXPECT_EQ(leftMebibytes(), 30U);
  owners_.used(1);  // ended
  EXPECT_EQ(leftMebibytes(), 30U);
  stage(0, 40);
  EXPECT_EQ(openOnes(), Ids{});
}

TEST_F(TransactionOwnersTest, OneOpenedForAClientThatHasLeftCountsAtOnce) {
  open("", 20);
  EXPECT_EQ(leftMebibytes(), 20U);
  open("", 20);
  EXPECT_EQ(openOnes(), Ids{1});
}

TEST_F(TransactionOwnersTest, OneOpenedForAClientThatHasLeftCountsBeforeItIsUsed) {
  uint32_t id = 0;
  EXPECT_NE(transactions_.open(id), nullptr);
  owners_.opened(id, "");
  EXPECT_EQ(owners_.leftBytes(), TransactionOwners::BYTES_OF_EMPTY);
}

TEST_F(TransactionOwnersTest, OneThatIsThereNoMoreTakesNothing) {
  EXPECT_EQ(transactions_.end(open("a", 0)), 0);
  owners_.left("a");
  EXPECT_EQ(owners_.leftBytes(), 0U);
}

TEST_F(TransactionOwnersTest, WhatIsEndedLeavesNothing) {
  for (int round = 0; round < 3; ++round) {
    const uint32_t first = open("a", 1);
    const uint32_t second = open("a", 1);
    end(first);
    owners_.left("b");
    EXPECT_EQ(owners_.leftBytes(), 0U);
    end(second);
    owners_.ended(second);
    owners_.left("a");
    EXPECT_EQ(owners_.leftBytes(), 0U);
  }
}

}  // namespace
