#include "tools/play_arguments.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <string_view>

#include "startup/argp_frame.h"
#include "tools/common_arguments.h"

namespace {

enum LongOption : int { OPTION_FORMAT = 256, OPTION_UPDATE };

// The groups keep their order.
const argp_option OPTIONS[] = {
    {"define", 'D', "NAME=VALUE", 0, "Give a constant of the definition text its value", 1},
    {"update", OPTION_UPDATE, nullptr, 0, "Write what happens into the sessions as expected", 2},
    {"format", OPTION_FORMAT, "text|tap|junit", 0, "The form of the report (text)", 3},
    {"quiet", 'q', nullptr, 0, "Leave out what happens where nothing is expected", 3},
    {"help", '?', nullptr, 0, "Give this help list", 4},
    {"usage", OPTION_USAGE, nullptr, 0, "Give a short usage message", 4},
    {"version", 'V', nullptr, 0, "Print program version", 4},
    {}};

// The vertical tab separates what is before the options from what is behind them.
const char* const DOCUMENTATION =
    "Play sessions with the device that DEFINITIONS define, without a bus, and compare what "
    "happens with what the sessions expect. On a terminal without a SESSION, talk with the "
    "device.\n"
    "\n"
    "Examples:\n"
    "  ostrel-play device.ostrel device.session\n"
    "  ostrel-play -D MODEL=pro --format=junit device.ostrel *.session > report.xml\n"
    "  ostrel-play --update device.ostrel new.session\n"
    "\v"
    "A file - is standard input. The status is 0 where all is as expected, 1 where something is "
    "not, and 2 for a fault of the command line, of reading and writing, or of a session's text.";

void takeConstant(const std::string& argument, PlayConstants& constants, const argp_state* state) {
  const size_t sign = argument.find('=');
  if (sign == std::string::npos) {
    return refuse(state, "-D " + argument + ": a value is missing; write NAME=VALUE");
  }
  if (sign == 0) return refuse(state, "-D " + argument + ": a name is missing; write NAME=VALUE");
  const std::string name = argument.substr(0, sign);
  if (!constants.emplace(name, argument.substr(sign + 1)).second) {
    refuse(state, "-D " + argument + ": the constant \"" + name + "\" is given twice");
  }
}

PlayFormat formatOf(std::string_view name, const argp_state* state) {
  constexpr std::string_view NAMES[] = {"text", "tap", "junit"};
  return static_cast<PlayFormat>(placeAmong(NAMES, name, "--format is text, tap or junit", state));
}

void finish(const PlayArguments& arguments, const argp_state* state) {
  if (arguments.definitions.empty()) refuse(state, "no DEFINITIONS are given");
  if (arguments.sessions.empty() && (isatty(STDIN_FILENO) == 0 || arguments.definitions == "-")) {
    refuse(state, "no SESSION is given; - is standard input");
  }
  const auto inputs = std::ranges::count(arguments.sessions, "-");
  if (inputs + (arguments.definitions == "-" ? 1 : 0) > 1) {
    refuse(state, "standard input is given twice");
  }
  if (inputs > 0 && arguments.updates) refuse(state, "standard input cannot be updated");
}

error_t takeOption(int key, char* argument, argp_state* state) {
  PlayArguments& arguments = *static_cast<PlayArguments*>(state->input);
  switch (key) {
    case ARGP_KEY_INIT:
      state->name = program_invocation_short_name;  // as argp itself sets it later
      refuseUnknownOptions(OPTIONS, "D", state);
      return 0;
    case 'D':
      takeConstant(argument, arguments.constants, state);
      return 0;
    case OPTION_FORMAT:
      arguments.format = formatOf(argument, state);
      return 0;
    case OPTION_UPDATE:
      arguments.updates = true;
      return 0;
    case 'q':
      arguments.isQuiet = true;
      return 0;
    case ARGP_KEY_ARG:
      if (state->arg_num == 0) {
        arguments.definitions = argument;
      } else {
        arguments.sessions.emplace_back(argument);
      }
      return 0;
    case ARGP_KEY_END:
      finish(arguments, state);
      return 0;
    default:
      return takeCommonOption(key, state);
  }
}

}  // namespace

PlayArguments parsePlayArguments(int argc, char** argv) {
  argp_err_exit_status = 2;
  PlayArguments arguments;
  const argp parser = {OPTIONS,
                       takeWithoutExceptions<takeOption>,
                       "DEFINITIONS [SESSION...]",
                       DOCUMENTATION,
                       nullptr,
                       nullptr,
                       nullptr};
  parseArguments(parser, argc, argv, ARGP_NO_HELP, &arguments);
  return arguments;
}
