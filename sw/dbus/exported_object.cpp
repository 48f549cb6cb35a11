#include "sw/dbus/exported_object.h"

#include <cassert>
#include <utility>

namespace {

struct Export {
  TakeCall take;
  const DBusObjectPathVTable* binding = nullptr;  // the binding library's handlers
  void* data = nullptr;                           // and what they are called with
};

Export exported;

DBusHandlerResult handleMessage(DBusConnection* /*connection*/, DBusMessage* message,
                                void* /*data*/) {
  if (dbus_message_get_type(message) != DBUS_MESSAGE_TYPE_METHOD_CALL) {
    return DBUS_HANDLER_RESULT_NOT_YET_HANDLED;
  }
  return exported.take(message);
}

}  // namespace

// This replaces the bus library's own function. The binding library calls it for the object that it
// is to export, and there is no other way to come before the binding library's handler.
extern "C" dbus_bool_t dbus_connection_try_register_object_path(DBusConnection* connection,
                                                                const char* path,
                                                                const DBusObjectPathVTable* vtable,
                                                                void* data, DBusError* error) {
  DBusObjectPathVTable handlers = {};
  handlers.message_function = handleMessage;
  exported.binding = vtable;
  exported.data = data;
  if (dbus_connection_register_object_path(connection, path, &handlers, data) != 0) return 1;
  dbus_set_error_const(error, DBUS_ERROR_NO_MEMORY, "No memory for the object's handler");
  return 0;
}

void exportObject(DBusGConnection* bus, const std::string& path, GObject* object, TakeCall take) {
  exported.take = std::move(take);
  dbus_g_connection_register_g_object(bus, path.c_str(), object);
  assert(exported.binding != nullptr);
}

DBusHandlerResult serveExported(DBusConnection* connection, DBusMessage* call) {
  return exported.binding->message_function(connection, call, exported.data);
}
