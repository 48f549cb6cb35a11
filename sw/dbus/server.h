// The service: takes its name on the session bus, exports the service object, runs the main loop.
#pragma once

#include <string>

#include "database/database.h"

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
               const std::string& pathSuffix);
