// End signals: SIGTERM, SIGINT and SIGHUP end the service in order.
#pragma once

#include <glib.h>

#include <array>
#include <csignal>
#include <functional>

/// Takes the three signals while it lives: the first that comes makes the main loop call a
/// function, and a second one of the same kind ends the process as it does by default, so that a
/// service that hangs can still be ended. A signal that was ignored stays ignored.
///
/// The signal handler only writes to a descriptor that the main loop waits for. GLib's own way
/// starts a thread, which this process must not have (docs/design.md). A second object at the same
/// time is a programming error and stops the program.
class EndSignals {
 public:
  /// `end` is called once at most, in the main loop's thread and not in the handler, so it may do
  /// whatever the loop may; it raises no exception. Where the process has no descriptor left, the
  /// signals end it as they do by default.
  explicit EndSignals(std::function<void()> end);
  /// The signals' actions are as they were before.
  ~EndSignals();
  EndSignals(const EndSignals&) = delete;
  EndSignals& operator=(const EndSignals&) = delete;

 private:
  static constexpr std::array SIGNALS = {SIGTERM, SIGINT, SIGHUP};

  static gboolean onSignal(gint descriptor, GIOCondition condition, gpointer self);

  std::function<void()> end_;
  guint source_ = 0;  // 0: the function was called, or the signals are not taken
  std::array<struct sigaction, SIGNALS.size()> actionsBefore_{};
};
