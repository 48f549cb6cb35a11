#include "tools/check_arguments.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string_view>

#include "check/constant_choices.h"
#include "check/text/nearest_word.h"
#include "startup/argp_frame.h"
#include "startup/version.h"
#include "tools/input_file.h"

// argp finds it under this name.
const char* argp_program_version = VERSION_TEXT;

namespace {

enum LongOption : int {
  OPTION_FORMAT = 256,
  OPTION_EXPLAIN,
  OPTION_LIST_CODES,
  OPTION_MAX_TIME,
  OPTION_NO_PROOFS,
  OPTION_SHOW_ALLOWED,
};

// The groups keep their order.
const argp_option OPTIONS[] = {
    {"define", 'D', "NAME=VALUE[,VALUE...]", 0,
     "Give a constant its values; with several, check every combination", 1},
    {"-D @FILE", 0, nullptr, OPTION_DOC, "Take such definitions from the lines of FILE", 2},
    {"-Wno-CODE", 0, nullptr, OPTION_DOC, "Do not report findings of CODE", 3},
    {"warn", 'W', "CODE", 0, "Report them again", 4},
    {"-Werror[=CODE]", 0, nullptr, OPTION_DOC,
     "Make errors of all warnings, or of findings of CODE", 5},
    {"no-proofs", OPTION_NO_PROOFS, nullptr, 0, "Do not ask what happens in all situations", 6},
    {"max-time", OPTION_MAX_TIME, "SECONDS", 0,
     "After that time, leave a text's remaining proofs undecided", 6},
    {"jobs", 'j', "N", 0, "Use up to N processors for proofs (1)", 6},
    {"format", OPTION_FORMAT, "text|json|sarif", 0, "The form of the report (text)", 7},
    {"quiet", 'q', nullptr, 0, "Report errors only", 7},
    {"verbose", 'v', nullptr, 0, "List undecided questions", 7},
    {"show-allowed", OPTION_SHOW_ALLOWED, nullptr, 0,
     "List also what comments \"# check: allow CODE\" silence", 7},
    {"explain", OPTION_EXPLAIN, "CODE", 0, "Explain CODE and exit", 8},
    {"list-codes", OPTION_LIST_CODES, nullptr, 0, "List all codes and exit", 8},
    {}};

// The vertical tab separates what is before the options from what is behind them.
const char* const DOCUMENTATION =
    "Say what is wrong with texts that define a device's parameters, before a device has them.\n"
    "\n"
    "Examples:\n"
    "  ostrel-check device.ostrel\n"
    "  ostrel-check -D MODEL=basic,pro -D CHANNELS=1,2 device.ostrel\n"
    "  ostrel-check -Werror --format=sarif *.ostrel > report.sarif\n"
    "  ostrel-check --explain never-true\n"
    "\v"
    "FILE - is standard input. The status is 0 where there is no error, 1 where there is one, and "
    "2 for a fault of the command line or of reading and writing.";

// Ends the process with status 2 and a message on standard error.
void refuse(const argp_state* state, const std::string& message) {
  argp_error(state, "%s", message.c_str());
}

void takeConstants(const char* argument, ConstantChoices& choices, const argp_state* state) {
  if (*argument != '@') {
    const std::string wrong = addConstantChoice(argument, choices);
    if (!wrong.empty()) refuse(state, std::string("-D ") + argument + ": " + wrong);
    return;
  }
  const char* const name = argument + 1;
  std::string text;
  const int error = readInputFile(name, text);
  if (error != 0) refuse(state, std::string("cannot read ") + name + ": " + std::strerror(error));
  const std::string wrong = addConstantChoices(name, text, choices);
  if (!wrong.empty()) refuse(state, wrong);
}

ReportFormat formatOf(std::string_view name, const argp_state* state) {
  constexpr std::string_view NAMES[] = {"text", "json", "sarif"};
  const auto* const found = std::ranges::find(NAMES, name);
  if (found == std::end(NAMES)) {
    NearestWord nearest(name);
    nearest.offer(NAMES);
    refuse(state, "--format is text, json or sarif, not \"" + std::string(name) + "\"" +
                      (nearest.found() ? "; did you mean \"" + std::string(*nearest.found()) + "\"?"
                                       : ""));
  }
  return static_cast<ReportFormat>(found - std::begin(NAMES));
}

uint32_t positiveNumber(std::string_view text, const char* option, const argp_state* state) {
  uint32_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size() || number == 0) {
    refuse(state,
           std::string(option) + " takes a whole number from 1, not \"" + std::string(text) + "\"");
  }
  return number;
}

// Ends the process after an answer.
[[noreturn]] void endAnswered() {
  if (std::ferror(stdout) != 0 || std::fflush(stdout) != 0) {
    std::fprintf(stderr, "ostrel-check: cannot write: %s\n", std::strerror(errno));
    std::exit(2);
  }
  std::exit(0);
}

void print(std::string_view text) { std::fwrite(text.data(), 1, text.size(), stdout); }

[[noreturn]] void listCodes() {
  size_t width = 0;
  for (const FindingCode& code : findingCodes()) width = std::max(width, code.name.size());
  for (const FindingCode& code : findingCodes()) {
    std::printf("%-*s  %-7s  ", static_cast<int>(width), std::string(code.name).c_str(),
                levelWord(code.level));
    print(code.summary);
    print("\n");
  }
  endAnswered();
}

void explain(const char* name, const argp_state* state) {
  const FindingCode* const code = findFindingCode(name);
  if (code == nullptr) {
    refuse(state, unknownCodeMessage(name));
    return;
  }
  print(code->name);
  std::printf(" (%s): ", levelWord(code->level));
  print(code->summary);
  print("\n\n");
  print(code->explanation);
  endAnswered();
}

void takeFile(const char* name, CheckArguments& arguments, const argp_state* state) {
  const bool isRepeated = std::ranges::find(arguments.files, name) != arguments.files.end();
  if (isRepeated && std::string_view(name) == "-") refuse(state, "standard input is given twice");
  arguments.files.emplace_back(name);
}

void finish(const CheckArguments& arguments, const argp_state* state) {
  if (arguments.files.empty()) refuse(state, "no FILE is given; - is standard input");
  const std::string tooMany = tooManyVariants(arguments.options.constants);
  if (!tooMany.empty()) refuse(state, tooMany);
}

error_t takeOption(int key, char* argument, argp_state* state) {
  CheckArguments& arguments = *static_cast<CheckArguments*>(state->input);
  switch (key) {
    case 'D':
      takeConstants(argument, arguments.options.constants, state);
      return 0;
    case 'W': {
      const std::string wrong = arguments.levels.take(argument);
      if (!wrong.empty()) refuse(state, wrong);
      return 0;
    }
    case OPTION_NO_PROOFS:
      arguments.options.proofs = false;
      return 0;
    case OPTION_MAX_TIME:
      arguments.options.maxSeconds = positiveNumber(argument, "--max-time", state);
      return 0;
    case 'j':
      arguments.options.jobs = positiveNumber(argument, "--jobs", state);
      return 0;
    case OPTION_FORMAT:
      arguments.format = formatOf(argument, state);
      return 0;
    case 'q':
      arguments.isQuiet = true;
      return 0;
    case 'v':
      arguments.showsUndecided = true;
      return 0;
    case OPTION_SHOW_ALLOWED:
      arguments.showsAllowed = true;
      return 0;
    case OPTION_EXPLAIN:
      explain(argument, state);
      return 0;
    case OPTION_LIST_CODES:
      listCodes();
    case ARGP_KEY_ARG:
      takeFile(argument, arguments, state);
      return 0;
    case ARGP_KEY_END:
      finish(arguments, state);
      return 0;
    default:
      return ARGP_ERR_UNKNOWN;
  }
}

}  // namespace

CheckArguments parseCheckArguments(int argc, char** argv) {
  argp_err_exit_status = 2;
  CheckArguments arguments;
  const argp parser = {
      OPTIONS, takeWithoutExceptions<takeOption>, "FILE...", DOCUMENTATION, nullptr, nullptr,
      nullptr};
  parseArguments(parser, argc, argv, &arguments);
  return arguments;
}
