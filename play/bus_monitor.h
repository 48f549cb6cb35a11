// All messages that pass on a bus, in their order.
#pragma once

#include <gio/gio.h>

#include <memory>
#include <string>

struct UnrefObject {
  void operator()(gpointer object) const { g_object_unref(object); }
};
using BusConnection = std::unique_ptr<GDBusConnection, UnrefObject>;
using BusMessage = std::unique_ptr<GDBusMessage, UnrefObject>;

/// Connects to the bus at `address`. Returns null where that fails, and says why in `error`.
BusConnection connectToBus(const std::string& address, std::string& error);
/// The unique name of the owner of `name`; empty where it has none.
std::string ownerOf(GDBusConnection& connection, const std::string& name);

/// Sees messages from the moment on at which it is made.
class BusMonitor {
 public:
  /// Monitors the bus at `address`. Returns null where the bus does not allow it, and says why in
  /// `error`.
  static std::unique_ptr<BusMonitor> start(const std::string& address, std::string& error);
  ~BusMonitor();
  BusMonitor(const BusMonitor&) = delete;
  BusMonitor& operator=(const BusMonitor&) = delete;

  /// The next message, null where none has come yet. Whenever one comes, the default main context
  /// wakes up.
  BusMessage next();
  /// Whether the bus is gone.
  [[nodiscard]] bool isClosed() const;

 private:
  explicit BusMonitor(BusConnection connection);
  static GDBusMessage* take(GDBusConnection* connection, GDBusMessage* message, gboolean isIncoming,
                            gpointer queue);

  // The library hands over messages in a thread of its own.
  GAsyncQueue* queue_;
  BusConnection connection_;
};
