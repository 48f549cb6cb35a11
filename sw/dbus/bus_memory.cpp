#include "sw/dbus/bus_memory.h"

#include <dbus/dbus.h>

#include <cstdlib>
#include <optional>

#include "sw/dbus/last_words.h"

namespace {

using Clock = std::chrono::steady_clock;

std::optional<Clock::time_point> shortSince;

void* noteIfNone(void* memory) {
  if (memory != nullptr) return memory;
  const Clock::time_point now = Clock::now();
  if (!shortSince) shortSince = now;
  if (now - *shortSince >= MEMORY_PATIENCE) endWithLastWords();
  return nullptr;
}

}  // namespace

bool isBusShortOfMemory() { return shortSince.has_value(); }

void noteMessage() { shortSince.reset(); }

// In the place of the bus library's own, which it calls itself.
// NOLINTBEGIN(readability-identifier-naming)
extern "C" {

void* dbus_malloc(size_t bytes) { return bytes == 0 ? nullptr : noteIfNone(malloc(bytes)); }

void* dbus_realloc(void* memory, size_t bytes) {
  if (bytes != 0) return noteIfNone(realloc(memory, bytes));
  free(memory);
  return nullptr;
}

// The blocks of which lists and tables are made. The bus library doubles the size of a block before
// it has the memory, and keeps the new size without it (dbus-mempool.c, _dbus_mem_pool_alloc): the
// next elements would lie beyond the end of the last block. So there is no going on.
void* dbus_malloc0(size_t bytes) {
  if (bytes == 0) return nullptr;
  void* memory = calloc(1, bytes);
  if (memory == nullptr) endWithLastWords();
  return memory;
}
}
// NOLINTEND(readability-identifier-naming)
