// End signals: SIGTERM, SIGINT and SIGHUP end the service in order.
#pragma once

#include <glib.h>

#include <array>
#include <csignal>
#include <functional>

/// Takes the three signals while it lives, of which there is one: the first of them that comes
/// makes the main loop call a function, the next one of the same kind ends the process as if there
/// were none of this. A signal that was ignored stays ignored. It is no thread, as GLib's own way
/// is.
class EndSignals {
 public:
  explicit EndSignals(std::function<void()> end);
  ~EndSignals();
  EndSignals(const EndSignals&) = delete;
  EndSignals& operator=(const EndSignals&) = delete;

 private:
  static constexpr std::array SIGNALS = {SIGTERM, SIGINT, SIGHUP};

  static gboolean onSignal(gint descriptor, GIOCondition condition, gpointer self);

  std::function<void()> end_;
  guint source_ = 0;
  std::array<struct sigaction, SIGNALS.size()> actionsBefore_{};
};
