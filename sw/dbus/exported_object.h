// Exporting an object: what stands between the bus library and the binding library's handler.
#pragma once

#include <dbus/dbus-glib.h>

#include <string>

/// Exports `object` at `path`, which is valid and free. The binding library takes every message
/// that is named like a method for a call, also a signal, for which the bus has other rules: it is
/// given method calls only.
void exportObject(DBusGConnection* bus, const std::string& path, GObject* object);
