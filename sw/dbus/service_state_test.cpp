#include "sw/dbus/service_state.h"

#include <gtest/gtest.h>

#include <new>

#include "tests/support/allocations.h"

namespace {

bool hasMemory = true;  // for what GLib tries to have

gpointer newZeros(gsize count, gsize size) { return hasMemory ? calloc(count, size) : nullptr; }

}  // namespace

// In the place of those of GLib.
extern "C" gpointer g_try_malloc0(gsize size) { return newZeros(1, size); }
extern "C" gpointer g_try_malloc0_n(gsize count, gsize size) { return newZeros(count, size); }

namespace {

TEST(ServiceStateDeathTest, IsNoneWhenItHasEnded) {
  Database database;
  { const ServiceState state(database); }
  EXPECT_DEATH(ServiceState::current(), "currentState != nullptr");
}

TEST(ServiceState, HasItsLockWhereThereIsMemoryForIt) {
  for (const bool memory : {false, true}) {
    Database database;
    ServiceState state(database);
    hasMemory = memory;
    EXPECT_EQ(state.createLock(), memory ? 0 : 1);
    EXPECT_EQ(state.lock() != nullptr, memory);
    hasMemory = true;
  }
}

class OpenTransactions : public testing::Test {
 protected:
  Database database_;
  ServiceState state_{database_};
};

TEST_F(OpenTransactions, LeaveNothingWhenTheyAreEnded) {
  state_.setCaller(":1.7");
  uint32_t id = 0;
  EXPECT_EQ(state_.openTransaction(id), 0);  // what the tables take at first stays
  EXPECT_EQ(state_.endTransaction(id), 0);
  const size_t before = Allocations::live;
  for (int round = 0; round < 10; ++round) {
    EXPECT_EQ(state_.openTransaction(id), 0);
    EXPECT_GT(Allocations::live, before);
    EXPECT_EQ(state_.endTransaction(id), 0);
    EXPECT_EQ(Allocations::live, before);
  }
}

TEST_F(OpenTransactions, AreOpenAltogetherOrNotAtAll) {
  state_.setCaller(":1.7 with a name that is no short text");
  uint32_t id = 0;
  bool fails = true;
  for (size_t allocations = 0; fails; ++allocations) {
    SCOPED_TRACE(allocations);
    Allocations::left = allocations;
    try {
      EXPECT_EQ(state_.openTransaction(id), 0);
      fails = false;
    } catch (const std::bad_alloc&) {
    }
    Allocations::left = SIZE_MAX;
    for (uint32_t each = 0; each <= allocations; ++each) {
      EXPECT_EQ(state_.findTransaction(each) != nullptr, !fails && each == id) << each;
    }
  }
  EXPECT_EQ(state_.endTransaction(id), 0);
}

}  // namespace
