// The program: the order of start-up.
#include <malloc.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <new>
#include <string_view>

#include "database/database.h"
#include "database/largest_change.h"
#include "startup/command_line.h"
#include "startup/constants.h"
#include "startup/definition_reader.h"
#include "startup/standard_streams.h"
#include "startup/version.h"
#include "sw/dbus/parameters/parameters_object.h"
#include "sw/dbus/server.h"
#include "sw/dbus/spare_memory.h"
#include "vid_std.h"

namespace {

// Who starts the daemon and then brings the device up says so, and clients can wait for that.
bool isBroughtUpByOthers() {
  const char* const told = std::getenv("OSTREL_BRING_UP");
  return told != nullptr && std::string_view(told) == "1";
}

std::shared_ptr<void> exportParameters(DBusConnection* connection, ServiceState& state,
                                       CallServer& calls, const std::string& pathSuffix) {
  return std::make_shared<ParametersObject>(connection, withSuffix("/parameters", "/", pathSuffix),
                                            state, calls, VERSION_TEXT, !isBroughtUpByOthers());
}

int start(int argc, char** argv) {
  openStandardStreams();
  const CommandLine commandLine = parseCommandLine(argc, argv);
  initVidStdTables();
  Database database;
  defineConstants(commandLine, [&](const std::string& name, const std::string& value) {
    return database.defineConstant(name, value);
  });
  const int result = loadDefinitions(stdin, database);
  if (result != 0) return result;
  reportLargestChange(database);
  malloc_trim(0);  // gives back the memory that reading took, which the heap would keep for ever
  keepSpareMemory();
  return runService(database, commandLine.busSuffix, commandLine.daemonize, commandLine.pathSuffix,
                    exportParameters);
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return start(argc, argv);
  } catch (const std::bad_alloc&) {
    fputs("Error starting the service: out of memory\n", stderr);
    return 1;
  }
}
