#include "sw/dbus/log_watch.h"

#include <cassert>

#include "base/system_log.h"

namespace {

constexpr gint64 NEVER = -1;

// The source of the LogWatch that lives. It is never removed meanwhile, because setting its time
// takes no memory and adding a source would.
GSource* watch = nullptr;

void tryInASecond() {
  if (g_source_get_ready_time(watch) != NEVER) return;
  g_source_set_ready_time(watch, g_get_monotonic_time() + G_TIME_SPAN_SECOND);
}

gboolean tryNow(GSource* source, GSourceFunc /*callback*/, gpointer /*data*/) {
  g_source_set_ready_time(source, NEVER);
  if (tellLostLines()) tryInASecond();
  return G_SOURCE_CONTINUE;
}

GSourceFuncs functions = {nullptr, nullptr, tryNow, nullptr, nullptr, nullptr};

}  // namespace

LogWatch::LogWatch() : source_(g_source_new(&functions, sizeof(GSource))) {
  assert(watch == nullptr);
  watch = source_;
  g_source_attach(source_, nullptr);
  whenLinesAreLost(tryInASecond);
}

LogWatch::~LogWatch() {
  // Where the log does not take the line now, the loss stays untold.
  static_cast<void>(tellLostLines());
  whenLinesAreLost(nullptr);
  g_source_destroy(source_);
  g_source_unref(source_);
  watch = nullptr;
}
