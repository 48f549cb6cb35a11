// Exporting an object: what is between the bus library and the binding library's handler.
#pragma once

#include <dbus/dbus-glib.h>
#include <dbus/dbus.h>

#include <functional>
#include <string>

/// What becomes of a method call for the exported object; the caller keeps its reference. Raises no
/// exception.
using TakeCall = std::function<DBusHandlerResult(DBusMessage* call)>;

/// Exports `object` at `path`, which is valid and free; there is one such object in a process. Its
/// method calls go to `take` as they are dispatched. The binding library takes every message that
/// is named like a method for a call, also a signal, for which the bus has other rules: others than
/// method calls are passed over.
void exportObject(DBusGConnection* bus, const std::string& path, GObject* object, TakeCall take);

/// Has the binding library serve a call for the exported object: the methods run, and the reply is
/// sent. The result is DBUS_HANDLER_RESULT_NOT_YET_HANDLED where the object has no such method;
/// nothing is sent then.
DBusHandlerResult serveExported(DBusConnection* connection, DBusMessage* call);
