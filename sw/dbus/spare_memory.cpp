#include "sw/dbus/spare_memory.h"

#include <glib.h>
#include <malloc.h>

namespace {

constexpr guint DELAY = 1;  // in seconds

guint pending = 0;

gboolean returnSpareMemory(gpointer) {
  malloc_trim(0);
  pending = 0;
  return G_SOURCE_REMOVE;
}

}  // namespace

void returnSpareMemorySoon() {
  if (pending == 0) pending = g_timeout_add_seconds(DELAY, returnSpareMemory, nullptr);
}
