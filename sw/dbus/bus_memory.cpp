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

// These replace the bus library's own functions, also where it calls them itself.
// NOLINTBEGIN(readability-identifier-naming)
extern "C" {

void* dbus_malloc(size_t bytes) { return bytes == 0 ? nullptr : noteIfNone(malloc(bytes)); }

void* dbus_realloc(void* memory, size_t bytes) {
  if (bytes != 0) return noteIfNone(realloc(memory, bytes));
  free(memory);
  return nullptr;
}

// The bus library makes its lists and tables of such blocks. It doubles the size of a block before
// it has the memory, and keeps the new size also without the memory (dbus-mempool.c,
// _dbus_mem_pool_alloc): the next elements would lie beyond the end of the last block. So the
// process cannot go on.
void* dbus_malloc0(size_t bytes) {
  if (bytes == 0) return nullptr;
  void* memory = calloc(1, bytes);
  if (memory == nullptr) endWithLastWords();
  return memory;
}
}
// NOLINTEND(readability-identifier-naming)
