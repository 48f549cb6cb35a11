// The command line: options and constants of the program. ostrel(1) lists them.
#pragma once

#include <map>
#include <string>

/// What the arguments say; the texts are copies.
struct CommandLine {
  bool daemonize = true;                         ///< cleared by --debug
  std::string busSuffix;                         ///< of the bus name, from --bus; or empty
  std::string pathSuffix;                        ///< of the object path, from --obj_path; or empty
  std::map<std::string, std::string> constants;  ///< value by name; of two with one name the first
};

/// Reads the arguments of the process. Ends it for an unknown option and for an argument without
/// "=", with a usage message, and after --help, --usage and --version. Raises std::bad_alloc where
/// memory is exhausted.
CommandLine parseCommandLine(int argc, char** argv);
