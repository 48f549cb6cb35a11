#include "tools/play_arguments.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <utility>

#include "check/constant_choices.h"
#include "startup/argp_frame.h"
#include "tools/common_arguments.h"
#include "tools/constant_arguments.h"

namespace {

enum LongOption : int {
  OPTION_FORMAT = 256,
  OPTION_UPDATE,
  OPTION_DIFF,
  OPTION_VALUES,
  OPTION_RECORD,
  OPTION_BUS,
  OPTION_BUS_SUFFIX,
  OPTION_PATH_SUFFIX,
  OPTION_DAEMON,
  OPTION_COVERAGE,
  OPTION_COVERAGE_SUMMARY,
  OPTION_FAIL_UNDER,
  OPTION_EXPLORE,
  OPTION_SECONDS,
  OPTION_STEPS,
  OPTION_SEED,
};

// The groups keep their order.
const argp_option OPTIONS[] = {
    {"define", 'D', "NAME=VALUE", 0, "Give a constant of the definition text its value", 1},
    {"explore", OPTION_EXPLORE, nullptr, 0,
     "Look for faults on walks that the program makes up; -D as for ostrel-check", 2},
    {"seconds", OPTION_SECONDS, "N", 0, "Explore for so long (10)", 2},
    {"steps", OPTION_STEPS, "N", 0, "Explore so many steps", 2},
    {"seed", OPTION_SEED, "N", 0, "Make up other walks (1)", 2},
    {"output", 'o', "FILE", 0, "Write the session of a find to FILE", 2},
    {"update", OPTION_UPDATE, nullptr, 0, "Write what happens into the sessions as expected", 3},
    {"format", OPTION_FORMAT, "text|tap|junit", 0, "The form of the report (text)", 4},
    {"quiet", 'q', nullptr, 0, "Leave out what happens where nothing is expected", 4},
    {"coverage", OPTION_COVERAGE, "FILE", 0,
     "Write what of DEFINITIONS was judged, as a tracefile of lcov", 5},
    {"coverage-summary", OPTION_COVERAGE_SUMMARY, nullptr, 0, "Print how much that is", 5},
    {"fail-under", OPTION_FAIL_UNDER, "PERCENT", 0,
     "List what is missing, with status 1, where it is less", 5},
    {"diff", OPTION_DIFF, nullptr, 0,
     "Say what a NEW text means for devices of the OLD one; -D as for ostrel-check", 6},
    {"values", OPTION_VALUES, "FILE", 0, "Also for these saved values, lines of name=value", 6},
    {"record", OPTION_RECORD, "FILE", OPTION_ARG_OPTIONAL,
     "Write what the clients of a daemon do as a session (standard output)", 7},
    {"bus", OPTION_BUS, "ADDRESS", 0,
     "Record the daemon on that bus, \"session\" for your own, instead of starting one", 7},
    {"bus-suffix", OPTION_BUS_SUFFIX, "STRING", 0, "The suffix of the bus name of that daemon", 7},
    {"path-suffix", OPTION_PATH_SUFFIX, "STRING", 0, "The suffix of its object path", 7},
    {"daemon", OPTION_DAEMON, "PROGRAM", 0, "The daemon to start (ostrel)", 7},
    {"help", '?', nullptr, 0, "Give this help list", 8},
    {"usage", OPTION_USAGE, nullptr, 0, "Give a short usage message", 8},
    {"version", 'V', nullptr, 0, "Print program version", 8},
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
    "  ostrel-play --record=panel.session device.ostrel -- ./panel --demo\n"
    "  ostrel-play --coverage=device.info --fail-under=90 device.ostrel *.session\n"
    "  ostrel-play --explore -D MODEL=basic,pro -o found.session device.ostrel\n"
    "  ostrel-play --diff device-1.ostrel device-2.ostrel --values=saved\n"
    "\v"
    "A file - is standard input. The status is 0 where all is as expected, 1 where something is "
    "not or a fault was found, and 2 for a fault of the command line, of reading and writing, or "
    "of a session's text.";

void addConstant(const std::string& argument, PlayConstants& constants, const argp_state* state) {
  auto [name, value] = takeConstant(argument, state);
  if (!constants.emplace(name, std::move(value)).second) refuseSecond(argument, name, state);
}

template <typename Number>
Number numberOf(std::string_view text, const char* option, Number least, const argp_state* state) {
  Number number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size() || number < least) {
    refuse(state, std::string(option) + " takes a whole number from " + std::to_string(least) +
                      ", not \"" + std::string(text) + "\"");
  }
  return number;
}

PlayFormat formatOf(std::string_view name, const argp_state* state) {
  constexpr std::string_view NAMES[] = {"text", "tap", "junit"};
  return static_cast<PlayFormat>(placeAmong(NAMES, name, "--format is text, tap or junit", state));
}

// The daemon that was built or installed with this program, or else the one that a shell finds.
std::string ownDaemon() {
  std::error_code error;
  const auto program = std::filesystem::read_symlink("/proc/self/exe", error);
  const auto daemon = program.parent_path() / "ostrel";
  return !error && std::filesystem::exists(daemon, error) ? daemon.string() : "ostrel";
}

void finishRecording(PlayArguments& arguments, const argp_state* state) {
  RecordArguments& recording = arguments.recording;
  recording.command = std::exchange(arguments.sessions, {});
  const bool hasSuffix = !recording.busSuffix.empty() || !recording.pathSuffix.empty();
  if (hasSuffix && recording.bus.empty()) refuse(state, "a suffix goes with --bus");
  if (!recording.daemon.empty() && !recording.bus.empty()) {
    refuse(state, "--daemon and --bus exclude each other");
  }
  if (recording.daemon.empty()) recording.daemon = ownDaemon();
}

double percentOf(std::string_view text, const argp_state* state) {
  double percent = 0;
  const auto [end, error] =
      std::from_chars(text.data(), text.data() + text.size(), percent, std::chars_format::fixed);
  const bool isNumber = error == std::errc() && end == text.data() + text.size();
  if (!isNumber || !(0 <= percent && percent <= 100)) {
    refuse(state, "--fail-under takes a number from 0 to 100, not \"" + std::string(text) + "\"");
  }
  return percent;
}

// What the command line has said so far.
struct TakenArguments {
  PlayArguments arguments;
  std::vector<std::string> definitions;  // of -D: what they mean, --explore decides
  const char* exploring = nullptr;       // an option that goes with --explore
  const char* recording = nullptr;       // an option that goes with --record
  const char* comparing = nullptr;       // an option that goes with --diff
};

void finishPlaying(const PlayArguments& arguments, const argp_state* state) {
  if (arguments.sessions.empty() && (isatty(STDIN_FILENO) == 0 || arguments.definitions == "-")) {
    refuse(state, "no SESSION is given; - is standard input");
  }
  const auto inputs = std::ranges::count(arguments.sessions, "-");
  if (inputs + (arguments.definitions == "-" ? 1 : 0) > 1) {
    refuse(state, "standard input is given twice");
  }
  if (inputs > 0 && arguments.updates) refuse(state, "standard input cannot be updated");
}

void finishExploring(PlayArguments& arguments, const argp_state* state) {
  if (!arguments.sessions.empty()) {
    refuse(state,
           "--explore takes no SESSION, but \"" + arguments.sessions.front() + "\" is given");
  }
  if (arguments.format != PLAY_TEXT) refuse(state, "--explore reports as text only");
  const std::string tooMany = tooManyVariants(arguments.choices);
  if (!tooMany.empty()) refuse(state, tooMany);
  ExploreArguments& exploration = arguments.exploration;
  if (!exploration.steps && !exploration.seconds) exploration.seconds = 10;
}

void finishComparing(const PlayArguments& arguments, const argp_state* state) {
  if (arguments.sessions.size() != 1) refuse(state, "--diff takes an OLD and a NEW text");
  const std::string* const files[] = {&arguments.definitions, &arguments.sessions.front(),
                                      &arguments.valuesFile};
  if (std::ranges::count_if(files, [](const std::string* file) { return *file == "-"; }) > 1) {
    refuse(state, "standard input is given twice");
  }
  const std::string tooMany = tooManyVariants(arguments.choices);
  if (!tooMany.empty()) refuse(state, tooMany);
}

// What excludes each other is said by the first of its options that counts.
void refuseTwoTasks(const TakenArguments& taken, const argp_state* state) {
  const PlayArguments& arguments = taken.arguments;
  std::vector<std::string> tasks;
  if (arguments.explores) tasks.emplace_back("--explore");
  if (arguments.compares) tasks.emplace_back("--diff");
  if (arguments.records) tasks.emplace_back("--record");
  if (arguments.updates) tasks.emplace_back("--update");
  if (tasks.size() > 1) refuse(state, tasks[0] + " and " + tasks[1] + " exclude each other");
  const auto refuseStray = [&](const char* option, const char* task, bool isAsked) {
    if (option != nullptr && !isAsked) refuse(state, std::string(option) + " is for " + task);
  };
  refuseStray(taken.exploring, "--explore", arguments.explores);
  refuseStray(taken.recording, "--record", arguments.records);
  refuseStray(taken.comparing, "--diff", arguments.compares);
}

// A slip of the hand is not to cost a text.
void refuseToReplace(const PlayArguments& arguments, const std::string& file, const char* option,
                     const argp_state* state) {
  if (file.empty() || file == "-") return;
  if (file == arguments.definitions || std::ranges::count(arguments.sessions, file) > 0) {
    refuse(state, std::string(option) + " would replace " + file);
  }
}

void finish(TakenArguments& taken, const argp_state* state) {
  PlayArguments& arguments = taken.arguments;
  for (const std::string& definition : taken.definitions) {
    if (arguments.explores || arguments.compares) {
      takeChoices(definition, arguments.choices, state);
    } else {
      addConstant(definition, arguments.constants, state);
    }
  }
  refuseTwoTasks(taken, state);
  if (arguments.definitions.empty()) refuse(state, "no DEFINITIONS are given");
  refuseToReplace(arguments, arguments.coverageFile, "--coverage", state);
  refuseToReplace(arguments, arguments.exploration.file, "-o", state);
  refuseToReplace(arguments, arguments.recording.output, "--record", state);
  if (arguments.compares) return finishComparing(arguments, state);
  if (arguments.explores) return finishExploring(arguments, state);
  if (arguments.records) return finishRecording(arguments, state);
  finishPlaying(arguments, state);
}

error_t takeOption(int key, char* argument, argp_state* state) {
  auto& taken = *static_cast<TakenArguments*>(state->input);
  PlayArguments& arguments = taken.arguments;
  switch (key) {
    case ARGP_KEY_INIT:
      state->name = program_invocation_short_name;  // as argp itself sets it later
      refuseUnknownOptions(OPTIONS, "Do", state);
      return 0;
    case 'D':
      taken.definitions.emplace_back(argument);
      return 0;
    case OPTION_EXPLORE:
      arguments.explores = true;
      return 0;
    case OPTION_SECONDS:
      taken.exploring = "--seconds";
      arguments.exploration.seconds = numberOf<uint32_t>(argument, "--seconds", 1, state);
      return 0;
    case OPTION_STEPS:
      taken.exploring = "--steps";
      arguments.exploration.steps = numberOf<uint64_t>(argument, "--steps", 1, state);
      return 0;
    case OPTION_SEED:
      taken.exploring = "--seed";
      arguments.exploration.seed = numberOf<uint64_t>(argument, "--seed", 0, state);
      return 0;
    case 'o':
      if (*argument == '\0') refuse(state, "-o takes the name of a file");
      taken.exploring = "-o";
      arguments.exploration.file = argument;
      return 0;
    case OPTION_FORMAT:
      arguments.format = formatOf(argument, state);
      return 0;
    case OPTION_UPDATE:
      arguments.updates = true;
      return 0;
    case OPTION_DIFF:
      arguments.compares = true;
      return 0;
    case OPTION_VALUES:
      if (*argument == '\0') refuse(state, "--values takes the name of a file");
      taken.comparing = "--values";
      arguments.valuesFile = argument;
      return 0;
    case OPTION_RECORD:
      arguments.records = true;
      arguments.recording.output = argument == nullptr ? "-" : argument;
      return 0;
    case OPTION_BUS:
      taken.recording = "--bus";
      arguments.recording.bus = argument;
      return 0;
    case OPTION_BUS_SUFFIX:
      taken.recording = "--bus-suffix";
      arguments.recording.busSuffix = argument;
      return 0;
    case OPTION_PATH_SUFFIX:
      taken.recording = "--path-suffix";
      arguments.recording.pathSuffix = argument;
      return 0;
    case OPTION_DAEMON:
      taken.recording = "--daemon";
      arguments.recording.daemon = argument;
      return 0;
    case OPTION_COVERAGE:
      if (*argument == '\0') refuse(state, "--coverage takes the name of a file");
      arguments.coverageFile = argument;
      return 0;
    case OPTION_COVERAGE_SUMMARY:
      arguments.summarizesCoverage = true;
      return 0;
    case OPTION_FAIL_UNDER:
      arguments.leastPercent = percentOf(argument, state);
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
      finish(taken, state);
      return 0;
    default:
      return takeCommonOption(key, state);
  }
}

}  // namespace

PlayArguments parsePlayArguments(int argc, char** argv) {
  argp_err_exit_status = 2;
  TakenArguments taken;
  const argp parser = {OPTIONS,
                       takeWithoutExceptions<takeOption>,
                       "DEFINITIONS [SESSION...]\n--explore DEFINITIONS\n--diff OLD NEW\n--record "
                       "DEFINITIONS [-- COMMAND [ARGUMENT...]]",
                       DOCUMENTATION,
                       nullptr,
                       nullptr,
                       nullptr};
  parseArguments(parser, argc, argv, ARGP_NO_HELP, &taken);
  return std::move(taken.arguments);
}
