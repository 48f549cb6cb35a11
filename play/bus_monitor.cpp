#include "play/bus_monitor.h"

#include <utility>

namespace {

constexpr const char* BUS_NAME = "org.freedesktop.DBus";
constexpr const char* BUS_PATH = "/org/freedesktop/DBus";

std::string takenText(GError* error) {
  std::string text = error->message;
  g_error_free(error);
  return text;
}

void unrefObject(gpointer object) { g_object_unref(object); }

}  // namespace

BusConnection connectToBus(const std::string& address, std::string& error) {
  GError* failure = nullptr;
  constexpr auto FLAGS =
      static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                        G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
  BusConnection connection(
      g_dbus_connection_new_for_address_sync(address.c_str(), FLAGS, nullptr, nullptr, &failure));
  if (connection == nullptr) error = takenText(failure);
  return connection;
}

std::string ownerOf(GDBusConnection& connection, const std::string& name) {
  GVariant* const reply = g_dbus_connection_call_sync(
      &connection, BUS_NAME, BUS_PATH, BUS_NAME, "GetNameOwner", g_variant_new("(s)", name.c_str()),
      G_VARIANT_TYPE("(s)"), G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr);
  if (reply == nullptr) return {};
  const gchar* owner = nullptr;
  g_variant_get(reply, "(&s)", &owner);
  std::string result = owner;
  g_variant_unref(reply);
  return result;
}

BusMonitor::BusMonitor(BusConnection connection)
    : queue_(g_async_queue_new_full(unrefObject)), connection_(std::move(connection)) {
  // The queue lives as long as the filter that uses it.
  g_dbus_connection_add_filter(
      connection_.get(), take, g_async_queue_ref(queue_),
      [](gpointer queue) { g_async_queue_unref(static_cast<GAsyncQueue*>(queue)); });
}

BusMonitor::~BusMonitor() {
  g_dbus_connection_close_sync(connection_.get(), nullptr, nullptr);
  g_async_queue_unref(queue_);
}

// In the library's thread. Replies to what this connection has asked pass on; the library would
// answer anything else, which a monitor must not do.
GDBusMessage* BusMonitor::take(GDBusConnection* connection, GDBusMessage* message,
                               gboolean isIncoming, gpointer queue) {
  if (isIncoming == FALSE) return message;
  const char* const destination = g_dbus_message_get_destination(message);
  const char* const own = g_dbus_connection_get_unique_name(connection);
  if (own == nullptr || g_strcmp0(destination, own) == 0) return message;
  g_async_queue_push(static_cast<GAsyncQueue*>(queue), message);
  g_main_context_wakeup(nullptr);
  return nullptr;
}

std::unique_ptr<BusMonitor> BusMonitor::start(const std::string& address, std::string& error) {
  BusConnection connection = connectToBus(address, error);
  if (connection == nullptr) return nullptr;
  std::unique_ptr<BusMonitor> monitor(new BusMonitor(std::move(connection)));
  GError* failure = nullptr;
  GVariant* const reply = g_dbus_connection_call_sync(
      monitor->connection_.get(), BUS_NAME, BUS_PATH, "org.freedesktop.DBus.Monitoring",
      "BecomeMonitor", g_variant_new_parsed("(@as [], uint32 0)"), nullptr, G_DBUS_CALL_FLAGS_NONE,
      -1, nullptr, &failure);
  if (reply == nullptr) {
    error = takenText(failure);
    return nullptr;
  }
  g_variant_unref(reply);
  return monitor;
}

BusMessage BusMonitor::next() {
  return BusMessage(static_cast<GDBusMessage*>(g_async_queue_try_pop(queue_)));
}

bool BusMonitor::isClosed() const {
  return g_dbus_connection_is_closed(connection_.get()) != FALSE;
}
