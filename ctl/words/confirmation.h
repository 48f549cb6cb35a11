// Confirmation: a commit of this client that others shall confirm, and what happens until then.
#pragma once

#include <gio/gio.h>

#include <map>
#include <string>

#include "ctl/service/service.h"

/// Why the wait is over.
enum Decision : int {
  DECISION_CONFIRMED = 0,
  DECISION_LATE = 1,         ///< nobody has confirmed it in time
  DECISION_INTERRUPTED = 2,  ///< a signal that would end the program
  DECISION_NO_SERVICE = 3,   ///< the service has gone, or is another one by now
  DECISION_NO_BUS = 4,
};

/// From its construction on, no signal but SIGKILL ends or stops the program: a lost terminal,
/// which the commit itself may have caused, must not keep it from being taken back.
class Confirmation {
 public:
  explicit Confirmation(Service& service);
  ~Confirmation();
  Confirmation(const Confirmation&) = delete;
  Confirmation& operator=(const Confirmation&) = delete;

  /// Takes notice of all commits until now.
  void takeSignals();
  /// What the commits of this client have changed since its construction.
  [[nodiscard]] const std::vector<Change>& changes() const { return changes_; }
  /// Waits for a line on standard input, where that is a terminal, or SIGUSR1. SIGINT, SIGTERM and
  /// SIGQUIT end the wait.
  Decision wait(int seconds);
  /// The last commit by somebody else that has changed the instance since; null where there is
  /// none.
  [[nodiscard]] const PastCommit* laterCommit(const std::string& name) const;

 private:
  static void onAppeared(GDBusConnection* connection, const gchar* name, const gchar* owner,
                         gpointer self);
  static void onVanished(GDBusConnection* connection, const gchar* name, gpointer self);
  static void onClosed(GDBusConnection* connection, gboolean isByPeer, GError* error,
                       gpointer self);
  static void onChanged(GDBusConnection* connection, const gchar* sender, const gchar* path,
                        const gchar* interface, const gchar* signal, GVariant* parameters,
                        gpointer self);
  static gboolean onSignal(gint descriptor, GIOCondition condition, gpointer self);
  static gboolean onKeys(gint descriptor, GIOCondition condition, gpointer self);
  static gboolean onLate(gpointer self);

  void decide(Decision decision);

  Service& service_;
  const std::string own_;  // the name of this client on the bus
  std::string owner_;      // of the service
  std::vector<Change> changes_;
  std::map<std::string, PastCommit> later_;  // by instance, without their changes
  bool isDecided_ = false;
  Decision decision_ = DECISION_LATE;
  guint subscription_ = 0;
  guint nameWatch_ = 0;
  gulong closing_ = 0;
};
