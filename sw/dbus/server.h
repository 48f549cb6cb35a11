// The service: takes its name on the session bus, exports the service object, runs the main loop.
#pragma once

#include <string>

#include "database/database.h"

/// Serves `database` until a client calls die. The bus name is org.tavrel.transaction, followed by
/// "." and `busSuffix` where there is one; the object path is /transaction, followed by "/" and
/// `pathSuffix`. With `daemonize` the process detaches from the terminal once it can serve.
/// Returns 1, always; a failure to start is reported and ends the process with status 1.
int runService(Database& database, const std::string& busSuffix, bool daemonize,
               const std::string& pathSuffix);
