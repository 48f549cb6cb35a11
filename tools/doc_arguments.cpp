#include "tools/doc_arguments.h"

#include <algorithm>
#include <cerrno>
#include <string_view>
#include <utility>

#include "startup/argp_frame.h"
#include "tools/common_arguments.h"
#include "tools/constant_arguments.h"

namespace {

enum LongOption : int { OPTION_CHECK = 256, OPTION_FORMAT, OPTION_NO_PICTURE, OPTION_TITLE };

// The groups keep their order.
const argp_option OPTIONS[] = {
    {"define", 'D', "NAME=VALUE", 0, "Give a constant of the definition text its value", 1},
    {"output", 'o', "DIR", 0, "Write a file index.* into this directory", 2},
    {"format", OPTION_FORMAT, "html|md|json", 0, "The form of the documentation (html)", 2},
    {"title", OPTION_TITLE, "TITLE", 0, "The name of the device (that of the file)", 2},
    {"no-picture", OPTION_NO_PICTURE, nullptr, 0, "Leave out the picture of what follows what", 2},
    {"check", OPTION_CHECK, nullptr, 0, "Only list the parameters without a description", 3},
    {"help", '?', nullptr, 0, "Give this help list", 4},
    {"usage", OPTION_USAGE, nullptr, 0, "Give a short usage message", 4},
    {"version", 'V', nullptr, 0, "Print program version", 4},
    {}};

// The vertical tab separates what is before the options from what is behind them.
const char* const DOCUMENTATION =
    "Write the documentation of the device that DEFINITIONS define: one page that needs nothing "
    "else, or text for other programs.\n"
    "\n"
    "Examples:\n"
    "  ostrel-doc -o html device.ostrel\n"
    "  ostrel-doc -D MODEL=pro --title='Frame synchroniser' -o html device.ostrel\n"
    "  ostrel-doc --format=json device.ostrel | jq .parameters\n"
    "  ostrel-doc --check device.ostrel\n"
    "\v"
    "Without -o the documentation goes to standard output. A file - is standard input. The status "
    "is 0, or 1 where --check finds a parameter without a description, and 2 for a fault of the "
    "command line, of reading and writing, or of the definitions.";

void addConstant(const std::string& argument, NamedValues& constants, const argp_state* state) {
  auto constant = takeConstant(argument, state);
  const bool isKnown = std::ranges::any_of(
      constants, [&](const auto& known) { return known.first == constant.first; });
  if (isKnown) refuseSecond(argument, constant.first, state);
  constants.push_back(std::move(constant));
}

DocFormat formatOf(std::string_view name, const argp_state* state) {
  constexpr std::string_view NAMES[] = {"html", "md", "json"};
  return static_cast<DocFormat>(placeAmong(NAMES, name, "--format is html, md or json", state));
}

error_t takeFile(DocArguments& arguments, const char* argument, const argp_state* state) {
  if (state->arg_num > 0) {
    refuse(state, std::string(argument) + ": only one file of DEFINITIONS can be given");
  }
  arguments.definitions = argument;
  return 0;
}

error_t takeOption(int key, char* argument, argp_state* state) {
  DocArguments& arguments = *static_cast<DocArguments*>(state->input);
  switch (key) {
    case ARGP_KEY_INIT:
      state->name = program_invocation_short_name;  // as argp itself sets it later
      refuseUnknownOptions(OPTIONS, "Do", state);
      return 0;
    case 'D':
      addConstant(argument, arguments.constants, state);
      return 0;
    case 'o':
      arguments.directory = argument;
      if (arguments.directory.empty()) refuse(state, "-o is given without a directory");
      return 0;
    case OPTION_FORMAT:
      arguments.format = formatOf(argument, state);
      return 0;
    case OPTION_TITLE:
      arguments.title = argument;
      return 0;
    case OPTION_NO_PICTURE:
      arguments.hasPicture = false;
      return 0;
    case OPTION_CHECK:
      arguments.onlyChecks = true;
      return 0;
    case ARGP_KEY_ARG:
      return takeFile(arguments, argument, state);
    case ARGP_KEY_END:
      if (arguments.definitions.empty()) refuse(state, "no DEFINITIONS are given");
      return 0;
    default:
      return takeCommonOption(key, state);
  }
}

}  // namespace

DocArguments parseDocArguments(int argc, char** argv) {
  argp_err_exit_status = 2;
  DocArguments arguments;
  const argp parser = {
      OPTIONS, takeWithoutExceptions<takeOption>, "DEFINITIONS", DOCUMENTATION, nullptr, nullptr,
      nullptr};
  parseArguments(parser, argc, argv, ARGP_NO_HELP, &arguments);
  return arguments;
}
