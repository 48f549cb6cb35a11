#include "tools/check_arguments.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <optional>
#include <string_view>
#include <utility>

#include "check/constant_choices.h"
#include "startup/argp_frame.h"
#include "tools/common_arguments.h"
#include "tools/constant_arguments.h"

namespace {

enum LongOption : int {
  OPTION_FORMAT = 256,
  OPTION_EXPLAIN,
  OPTION_LIST_CODES,
  OPTION_MAX_TIME,
  OPTION_NO_PROOFS,
  OPTION_SHOW_ALLOWED,
};

// Of a line of --help that is another spelling: --usage would take it for the name of an option.
constexpr int NO_OPTION = OPTION_DOC | OPTION_NO_USAGE;

// The groups keep their order.
const argp_option OPTIONS[] = {
    {"define", 'D', "NAME=VALUE[,VALUE...]", 0,
     "Give a constant its values; with several, check every combination", 1},
    {"-D @FILE", 0, nullptr, NO_OPTION, "Take such definitions from the lines of FILE", 2},
    {"-Wno-CODE", 0, nullptr, NO_OPTION, "Do not report findings of CODE", 3},
    {"warn", 'W', "CODE", 0, "Report them again", 4},
    {"-Werror[=CODE]", 0, nullptr, NO_OPTION, "Make errors of all warnings, or of findings of CODE",
     5},
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
    {"help", '?', nullptr, 0, "Give this help list", 9},
    {"usage", OPTION_USAGE, nullptr, 0, "Give a short usage message", 9},
    {"version", 'V', nullptr, 0, "Print program version", 9},
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

ReportFormat formatOf(std::string_view name, const argp_state* state) {
  constexpr std::string_view NAMES[] = {"text", "json", "sarif"};
  return static_cast<ReportFormat>(
      placeAmong(NAMES, name, "--format is text, json or sarif", state));
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

void print(std::string_view text) { std::fwrite(text.data(), 1, text.size(), stdout); }

void listCodes() {
  size_t width = 0;
  for (const FindingCode& code : findingCodes()) width = std::max(width, code.name.size());
  for (const FindingCode& code : findingCodes()) {
    std::printf("%-*s  %-7s  ", static_cast<int>(width), std::string(code.name).c_str(),
                levelWord(code.level));
    print(code.summary);
    print("\n");
  }
}

void explain(const FindingCode& code) {
  print(code.name);
  std::printf(" (%s): ", levelWord(code.level));
  print(code.summary);
  print("\n\n");
  print(code.explanation);
}

// An answer that needs no text. It is given once the whole command line is known to be right.
struct Answer {
  const char* option = nullptr;       // null where none is asked for
  const FindingCode* code = nullptr;  // to explain; null for the list of all
};

void takeAnswer(Answer asked, Answer& answer, const argp_state* state) {
  if (answer.option != nullptr) {
    refuse(state, "one --explain or --list-codes is answered at a time");
  }
  answer = asked;
}

void takeExplain(const char* name, Answer& answer, const argp_state* state) {
  const FindingCode* const code = findFindingCode(name);
  if (code == nullptr) refuse(state, unknownCodeMessage(name));
  takeAnswer({"--explain", code}, answer, state);
}

[[noreturn]] void give(const Answer& answer) {
  if (answer.code != nullptr) {
    explain(*answer.code);
  } else {
    listCodes();
  }
  endAnswered();
}

void takeFile(const char* name, CheckArguments& arguments, const argp_state* state) {
  const bool isRepeated = std::ranges::find(arguments.files, name) != arguments.files.end();
  if (isRepeated && std::string_view(name) == "-") refuse(state, "standard input is given twice");
  arguments.files.emplace_back(name);
}

void finish(const CheckArguments& arguments, const Answer& answer, const argp_state* state) {
  if (answer.option != nullptr) {
    if (!arguments.files.empty()) {
      refuse(state, std::string(answer.option) + " takes no FILE, but \"" +
                        arguments.files.front() + "\" is given");
    }
    give(answer);
  }
  if (arguments.files.empty()) refuse(state, "no FILE is given; - is standard input");
  const std::string tooMany = tooManyVariants(arguments.options.constants);
  if (!tooMany.empty()) refuse(state, tooMany);
}

// What the command line has said so far.
struct TakenArguments {
  CheckArguments arguments;
  Answer answer;
};

error_t takeOption(int key, char* argument, argp_state* state) {
  auto& [arguments, answer] = *static_cast<TakenArguments*>(state->input);
  switch (key) {
    case ARGP_KEY_INIT:
      state->name = program_invocation_short_name;  // as argp itself sets it later
      refuseUnknownOptions(OPTIONS, "DWj", state);
      return 0;
    case 'D':
      takeChoices(argument, arguments.options.constants, state);
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
      takeExplain(argument, answer, state);
      return 0;
    case OPTION_LIST_CODES:
      takeAnswer({"--list-codes"}, answer, state);
      return 0;
    case ARGP_KEY_ARG:
      takeFile(argument, arguments, state);
      return 0;
    case ARGP_KEY_END:
      finish(arguments, answer, state);
      return 0;
    default:
      return takeCommonOption(key, state);
  }
}

}  // namespace

CheckArguments parseCheckArguments(int argc, char** argv) {
  argp_err_exit_status = 2;
  TakenArguments taken;
  const argp parser = {
      OPTIONS, takeWithoutExceptions<takeOption>, "FILE...", DOCUMENTATION, nullptr, nullptr,
      nullptr};
  parseArguments(parser, argc, argv, ARGP_NO_HELP, &taken);
  return std::move(taken.arguments);
}
