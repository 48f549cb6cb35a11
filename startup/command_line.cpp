#include "startup/command_line.h"

#include <cstring>

#include "startup/argp_frame.h"
#include "startup/version.h"

// argp finds both under these names. The empty address leaves an empty line in the help.
const char* argp_program_version = VERSION_TEXT;
const char* argp_program_bug_address = "";

namespace {

const argp_option OPTIONS[] = {{"bus", 'b', "STRING", 0, "D-Bus (well-known) bus name", 0},
                               {"obj_path", 'o', "STRING", 0, "D-Bus object path", 0},
                               {"debug", 'd', nullptr, 0, "Allow debugging - do not daemonize", 0},
                               {}};

// Takes in "name=value". The value may hold further "=" and both may be empty; a name that is
// already there keeps its value.
void addConstant(const char* argument, CommandLine& commandLine, argp_state* state) {
  const char* equals = strchr(argument, '=');
  if (equals == nullptr) {
    argp_usage(state);
    return;
  }
  commandLine.constants.emplace(std::string(argument, equals), equals + 1);
}

error_t takeOption(int key, char* argument, argp_state* state) {
  CommandLine& commandLine = *static_cast<CommandLine*>(state->input);
  switch (key) {
    case 'b':
      commandLine.busSuffix = argument;
      return 0;
    case 'o':
      commandLine.pathSuffix = argument;
      return 0;
    case 'd':
      commandLine.daemonize = false;
      return 0;
    case ARGP_KEY_ARG:
      addConstant(argument, commandLine, state);
      return 0;
    case ARGP_KEY_END:
      return 0;
    default:
      return ARGP_ERR_UNKNOWN;
  }
}

}  // namespace

CommandLine parseCommandLine(int argc, char** argv) {
  CommandLine commandLine;
  const argp parser = {OPTIONS,
                       takeWithoutExceptions<takeOption>,
                       "List of constant definitions. Format is \"name=value\"",
                       "ostrel -- Product parameter handler",
                       nullptr,
                       nullptr,
                       nullptr};
  parseArguments(parser, argc, argv, 0, &commandLine);
  return commandLine;
}
