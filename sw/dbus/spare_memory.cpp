#include "sw/dbus/spare_memory.h"

#include <glib.h>
#include <malloc.h>

namespace {

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
