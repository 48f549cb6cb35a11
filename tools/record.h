// Records what clients do with a daemon, as a session.
#pragma once

#include <string>
#include <vector>

#include "play/device.h"

/// What is recorded, and where.
struct RecordArguments {
  /// The address of a bus that a daemon serves on, or "session" for the user's own; empty for a bus
  /// and a daemon that are started for the recording.
  std::string bus = {};
  std::string busSuffix = {};             ///< of the daemon's bus name; or empty
  std::string pathSuffix = {};            ///< of its object path; or empty
  std::string daemon = {};                ///< the program to start, for a bus of its own
  std::vector<std::string> command = {};  ///< the client, program first; empty for others alone
  std::string output = {};                ///< the session file; "-" is standard output
};

/// Records what clients do with a daemon of the definitions `text`, called `name`, and with
/// `constants`, until the command ends, or where there is none until SIGINT or SIGTERM comes or the
/// daemon leaves the bus. Faults are reported on standard error. Returns 0; 1 where the command has
/// failed; 2 where nothing could be recorded or written.
int record(const RecordArguments& arguments, const std::string& name, const std::string& text,
           const PlayConstants& constants);
