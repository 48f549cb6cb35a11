// The object /parameters: its export, its method table, introspection and properties.
#pragma once

#include <dbus/dbus.h>

#include <string>

#include "sw/dbus/call_server.h"
#include "sw/dbus/parameters/parameters_state.h"

/// Answers the calls for one object. At most one lives at a time.
class ParametersObject {
 public:
  /// Exports the object at `path`, which is valid and free; its calls go to `calls`, in turns with
  /// all others. All that is given outlives it. Where the device `isReady`, nobody has to bring it
  /// up. Raises std::bad_alloc where memory is exhausted.
  ParametersObject(DBusConnection* connection, const std::string& path, ServiceState& service,
                   CallServer& calls, const std::string& version, bool isReady);
  ~ParametersObject();
  ParametersObject(const ParametersObject&) = delete;
  ParametersObject& operator=(const ParametersObject&) = delete;

 private:
  static DBusHandlerResult take(DBusConnection* connection, DBusMessage* message, void* self);
  static DBusHandlerResult serve(DBusConnection* connection, DBusMessage* call);

  DBusConnection* connection_;
  std::string path_;
  CallServer& calls_;
  ParametersState state_;
};
