// The service: takes its name on the session bus, exports the service object, runs the main loop.
#pragma once

#include <dbus/dbus.h>

#include <functional>
#include <memory>
#include <string>

#include "database/database.h"
#include "sw/dbus/call_server.h"
#include "sw/dbus/service_state.h"

/// `text`, followed by `separator` and `suffix` where that is not empty.
std::string withSuffix(const std::string& text, const char* separator, const std::string& suffix);

/// Exports whatever is served beside the service object, before the name is requested. `pathSuffix`
/// is as below. What it returns lives until the main loop has ended.
using ExportMore =
    std::function<std::shared_ptr<void>(DBusConnection* connection, ServiceState& state,
                                        CallServer& calls, const std::string& pathSuffix)>;

/// Serves `database`, which stays the caller's, until a client calls die, SIGTERM, SIGINT or SIGHUP
/// comes, or the bus is lost. The bus name is org.tavrel.transaction, followed by "." and
/// `busSuffix` where that is not empty; the object path is /transaction, followed by "/" and
/// `pathSuffix` where that is not empty. With `daemonize` the process detaches from the terminal
/// once it can serve.
///
/// Returns 1, always: the service ends with status 1, also in order. A failure to start is reported
/// on standard error and ends the process with status 1; std::bad_alloc is raised where memory is
/// exhausted before the service is ready. To be called once in a process.
int runService(Database& database, const std::string& busSuffix, bool daemonize,
               const std::string& pathSuffix, const ExportMore& exportMore);
