#include "sw/dbus/end_signals.h"

#include <glib-unix.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <atomic>
#include <cassert>
#include <cstdint>
#include <utility>

namespace {

// The descriptor that the handler writes to and the main loop waits for. It is -1 while no object
// lives, or where none could be had.
std::atomic<int> event = -1;

// A signal handler: it calls only functions that are safe in one.
void noteSignal(int /*signal*/) {
  constexpr uint64_t ONE = 1;
  static_cast<void>(!write(event, &ONE, sizeof ONE));
}

}  // namespace

EndSignals::EndSignals(std::function<void()> end) : end_(std::move(end)) {
  assert(event == -1);
  event = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
  if (event == -1) return;  // no descriptor: the signals end the process as they do by themselves
  source_ = g_unix_fd_add_full(G_PRIORITY_HIGH, event, G_IO_IN, onSignal, this, nullptr);
  struct sigaction action {};
  action.sa_handler = noteSignal;
  action.sa_flags = SA_RESTART | static_cast<int>(SA_RESETHAND);
  for (size_t i = 0; i < SIGNALS.size(); ++i) {
    sigaction(SIGNALS[i], nullptr, &actionsBefore_[i]);
    if (actionsBefore_[i].sa_handler != SIG_IGN) sigaction(SIGNALS[i], &action, nullptr);
  }
}

EndSignals::~EndSignals() {
  if (event == -1) return;
  for (size_t i = 0; i < SIGNALS.size(); ++i) sigaction(SIGNALS[i], &actionsBefore_[i], nullptr);
  if (source_ != 0) g_source_remove(source_);
  close(event);
  event = -1;
}

gboolean EndSignals::onSignal(gint /*descriptor*/, GIOCondition /*condition*/, gpointer self) {
  auto* signals = static_cast<EndSignals*>(self);
  signals->source_ = 0;
  signals->end_();
  return G_SOURCE_REMOVE;
}
