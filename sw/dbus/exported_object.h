// Exporting an object: what is between the bus library and the binding library's handler.
#pragma once

#include <dbus/dbus-glib.h>
#include <dbus/dbus.h>

#include <functional>
#include <string>

/// Decides what becomes of a method call for the exported object; the caller keeps its reference.
/// Returns what a handler of the bus library does. Raises no exception: the bus library is in C.
using TakeCall = std::function<DBusHandlerResult(DBusMessage* call)>;

/// Exports `object` at `path`, which is valid and free; there is one such object in a process, and
/// it stays exported. From now on `take` gets its method calls as they are dispatched, and calls
/// serveExported() at once or later.
///
/// The binding library alone would serve every message that is named like a method, also a signal,
/// for which the bus has other rules; so messages that are no method calls are passed over here. An
/// assertion notices a binding library that registers its handler in another way.
void exportObject(DBusGConnection* bus, const std::string& path, GObject* object, TakeCall take);

/// Has the binding library serve a call for the exported object: the method runs, and the reply is
/// sent. Returns DBUS_HANDLER_RESULT_NOT_YET_HANDLED where the object has no such method, and sends
/// no reply then.
DBusHandlerResult serveExported(DBusConnection* connection, DBusMessage* call);
