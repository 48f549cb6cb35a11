#include "sw/dbus/spare_memory.h"

#include <glib.h>
#include <malloc.h>

namespace {

constexpr int LARGE_BLOCK = 4 << 20;  // bytes; larger ones are mappings of their own
constexpr int MOST_KEPT = 16 << 20;   // bytes

constexpr guint DELAY = 1;  // in seconds

bool isPending = false;

gboolean returnSpareMemory(gpointer) {
  malloc_trim(0);
  isPending = false;
  return G_SOURCE_REMOVE;
}

}  // namespace

void returnSpareMemorySoon() {
  if (isPending) return;
  isPending = true;
  g_timeout_add_seconds(DELAY, returnSpareMemory, nullptr);
}

// Each may be refused, and the heap is as it was.
void keepSpareMemory() {
  mallopt(M_MMAP_THRESHOLD, LARGE_BLOCK);
  mallopt(M_TRIM_THRESHOLD, MOST_KEPT);
}
