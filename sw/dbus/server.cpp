#include "sw/dbus/server.h"

#include <dbus/dbus-glib-lowlevel.h>
#include <dbus/dbus-glib.h>
#include <linux/sockios.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cassert>
#include <cstdio>

#include "base/system_log.h"
#include "sw/dbus/call_server.h"
#include "sw/dbus/deadline.h"
#include "sw/dbus/descriptors.h"
#include "sw/dbus/end_signals.h"
#include "sw/dbus/exported_object.h"
#include "sw/dbus/last_words.h"
#include "sw/dbus/log_watch.h"
#include "sw/dbus/reporter.h"
#include "sw/dbus/service_state.h"
#include "sw/dbus/value_object.h"

std::string withSuffix(const std::string& text, const char* separator, const std::string& suffix) {
  return suffix.empty() ? text : text + separator + suffix;
}

namespace {

constexpr bool FATAL = true;
const char* const NO_CONNECTION = "Couldn\u2019t connect to session bus";
const char* const OUT_OF_MEMORY_DETAIL = "Unknown (OOM ?)";

void createMainLoopAndLock(ServiceState& state) {
  if (state.createMainLoop() != 0) {
    reportError("Couldn\u2019t create GMainLoop", OUT_OF_MEMORY_DETAIL, FATAL);
  }
  if (state.createLock() != 0) {
    reportError("Couldn\u2019t initialize server methods", OUT_OF_MEMORY_DETAIL, FATAL);
  }
}

DBusGConnection* connectToBus() {
  g_print("Transaction server:main Connecting to the Session D-Bus.\n");
  // The bus library limits the time of each call, but not that of connecting and authenticating.
  constexpr int LIMIT = 60000;  // in milliseconds; that of a call is 25 seconds
  const Deadline deadline(LIMIT, errorText(NO_CONNECTION, "The bus does not answer"));
  const WithoutDescriptors withoutDescriptors;
  GError* error = nullptr;
  // A private connection: a shared one is put into a table, and where there is no memory for the
  // table, the bus library does not notice.
  DBusGConnection* bus = dbus_g_bus_get_private(DBUS_BUS_SESSION, nullptr, &error);
  if (error != nullptr) reportError(NO_CONNECTION, error->message, FATAL);
  DBusConnection* connection = dbus_g_connection_get_connection(bus);
  assert(dbus_connection_can_send_type(connection, DBUS_TYPE_UNIX_FD) == 0);
  // The binding library has the main loop woken for each message that comes, as another thread may
  // wait in it. Here there is the loop's thread only, which looks at the connection before it
  // waits. So the waking is left out, and each message takes one system call less.
  dbus_connection_set_wakeup_main_function(connection, nullptr, nullptr, nullptr);
  // Otherwise the bus library would end the process without a word when the bus is lost.
  dbus_connection_set_exit_on_disconnect(connection, FALSE);
  return bus;
}

// The bus library ends the process without a word for a text that is not UTF-8 and for a path that
// is not valid.
using Validation = dbus_bool_t (*)(const char* text, DBusError* error);
void requireValid(Validation validate, const std::string& text, const char* report) {
  DBusError error = DBUS_ERROR_INIT;
  if (validate(text.c_str(), &error) == 0) reportError(report, error.message, FATAL);
}

// Asks for neither queueing nor replacement: where another service has the name, this one ends
// here.
void requestName(DBusGConnection* bus, const std::string& name) {
  g_print("Transaction server:main Registering the well-known name (%s)\n", name.c_str());
  DBusGProxy* proxy =
      dbus_g_proxy_new_for_name(bus, DBUS_SERVICE_DBUS, DBUS_PATH_DBUS, DBUS_INTERFACE_DBUS);
  if (proxy == nullptr) {
    reportError("Failed to get a proxy for D-Bus", "Unknown(dbus_g_proxy_new_for_name)", FATAL);
  }
  requireValid(dbus_validate_utf8, name, "Invalid bus name");
  constexpr guint NO_FLAGS = 0;
  guint reply = 0;
  GError* error = nullptr;
  if (dbus_g_proxy_call(proxy, "RequestName", &error, G_TYPE_STRING, name.c_str(), G_TYPE_UINT,
                        NO_FLAGS, G_TYPE_INVALID, G_TYPE_UINT, &reply, G_TYPE_INVALID) == FALSE) {
    reportError("D-Bus. RequestName RPC failed", error->message, FATAL);
  }
  g_object_unref(proxy);
  g_print("Transaction server:main RequestName returned %d.\n", reply);
  if (reply != DBUS_REQUEST_NAME_REPLY_PRIMARY_OWNER) {
    reportError("Failed to get the primary well-known name.", "RequestName result != 1", FATAL);
  }
}

void registerObject(DBusGConnection* bus, const std::string& path, CallServer& calls) {
  g_print("Transaction server:main Creating one \"%s\" object.\n", path.c_str());
  gpointer object = g_object_new(value_object_get_type(), nullptr);
  if (object == nullptr) {
    reportError("Failed to create one Value instance.", OUT_OF_MEMORY_DETAIL, FATAL);
  }
  g_print("Transaction server:main Registering it on the D-Bus.\n");
  exportObject(bus, path, G_OBJECT(object),
               [&calls](DBusMessage* call) { return calls.take(call, serveExported); });
}

void detach(bool daemonize) {
  g_print("Transaction server:main Ready to serve requests (daemonizing).\n");
  if (!daemonize) {
    g_print("Transaction server: Not daemonizing\n");
    return;
  }
  // daemon() redirects the streams, and text that is still in their buffers would be lost.
  fflush(nullptr);
  if (daemon(0, 0) != 0) {
    g_log(G_LOG_DOMAIN, G_LOG_LEVEL_ERROR, "Transaction server: Failed to daemonize.\n");
  }
}

void reportLoss() {
  constexpr const char* LOST = "Lost the connection to the session bus";
  reportError(LOST, "The bus has ended, or has closed it", !FATAL);
  logError(LOST);
}

// Whether the bus still has to read something that was sent to it.
bool isUnread(DBusConnection* connection) {
  int socket = -1;
  int bytes = 0;
  return dbus_connection_get_unix_fd(connection, &socket) != 0 &&
         ioctl(socket, SIOCOUTQ, &bytes) == 0 && bytes > 0;
}

// Sends what is still to be sent, and waits until the bus has read it, two seconds at most: a
// client that does not read must not keep the process alive. Without the wait, a bus that wants to
// write to the connection would find it gone, and drop what it has not read from it.
void sendRest(DBusConnection* connection) {
  constexpr int STEP = 10;  // in milliseconds
  const gint64 deadline = g_get_monotonic_time() + 2 * G_TIME_SPAN_SECOND;
  while ((dbus_connection_has_messages_to_send(connection) != 0 || isUnread(connection)) &&
         g_get_monotonic_time() < deadline) {
    if (dbus_connection_read_write(connection, STEP) == 0) return;  // no bus any more
  }
}

}  // namespace

int runService(Database& database, const std::string& busSuffix, bool daemonize,
               const std::string& pathSuffix, const ExportMore& exportMore) {
  endInOrderWithoutMemory();
  printRawBytes();
  ServiceState state(database);
  createMainLoopAndLock(state);
  DBusGConnection* bus = connectToBus();
  const std::string path = withSuffix("/transaction", "/", pathSuffix);
  requireValid(dbus_validate_path, path, "Invalid object path");
  DBusConnection* connection = dbus_g_connection_get_connection(bus);
  CallServer calls(connection, state);
  const std::shared_ptr<void> more = exportMore(connection, state, calls, pathSuffix);
  const EndSignals endSignals([&calls] { calls.end(); });
  requestName(bus, withSuffix("org.tavrel.transaction", ".", busSuffix));
  registerObject(bus, path, calls);
  detach(daemonize);
  const LogWatch logWatch;
  g_main_loop_run(state.mainLoop());
  if (dbus_connection_get_is_connected(connection) == 0) {
    reportLoss();
    return 1;
  }
  calls.serveEarlier();
  // The reply to die may not be sent yet.
  sendRest(connection);
  return 1;
}
