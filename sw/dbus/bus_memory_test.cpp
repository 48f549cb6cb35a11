#include "sw/dbus/bus_memory.h"

#include <dbus/dbus.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>

#include "sw/dbus/last_words.h"

namespace {

// More than any process has; the compiler need not know.
const volatile size_t NEVER = SIZE_MAX / 8 * 7;

TEST(BusMemory, IsGivenAsTheBusLibraryExpectsIt) {
  EXPECT_EQ(dbus_malloc(0), nullptr);
  EXPECT_EQ(dbus_malloc0(0), nullptr);
  auto* cleared = static_cast<char*>(dbus_malloc0(100));
  EXPECT_EQ(std::string(cleared, 100), std::string(100, '\0'));
  cleared[99] = 'x';
  auto* longer = static_cast<char*>(dbus_realloc(cleared, 100000));
  EXPECT_EQ(longer[99], 'x');
  EXPECT_EQ(dbus_realloc(longer, 0), nullptr);  // and it is free
  dbus_free(dbus_realloc(nullptr, 10));
  EXPECT_FALSE(isBusShortOfMemory());
}

// A sanitizer's allocator ends the process where so much is asked for.
#ifndef __SANITIZE_ADDRESS__
TEST(BusMemory, IsShortUntilTheNextMessage) {
  char* kept = static_cast<char*>(dbus_malloc(2));
  strcpy(kept, "k");
  for (const auto allocate : {+[](void*) { return dbus_malloc(NEVER); },
                              +[](void* memory) { return dbus_realloc(memory, NEVER); }}) {
    EXPECT_EQ(allocate(kept), nullptr);
    EXPECT_TRUE(isBusShortOfMemory());
    dbus_free(dbus_malloc(1));
    EXPECT_TRUE(isBusShortOfMemory());
    noteMessage();
    EXPECT_FALSE(isBusShortOfMemory());
  }
  EXPECT_STREQ(kept, "k");
  dbus_free(kept);
}

TEST(BusMemoryDeathTest, EndsTheProcessWithoutABlockForItsLists) {
  EXPECT_EXIT(dbus_malloc0(NEVER), testing::ExitedWithCode(1), "Out of memory");
}
#endif

}  // namespace
