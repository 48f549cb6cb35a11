#include "tests/harness/daemon.h"

#include <cstdlib>
#include <fstream>

namespace {

// The sanitizers' options of the test run stay in force; the one that is added allows the preloaded
// log capture to come before the sanitizers' own library.
std::string sanitizerOptions() {
  const char* given = getenv("ASAN_OPTIONS");
  return (given == nullptr ? std::string() : std::string(given) + ":") + "verify_asan_link_order=0";
}

std::vector<std::string> command(const Daemon::Options& options) {
  std::vector<std::string> result;
  if (!options.redirections.empty()) {
    result = {"/bin/sh", "-c", "exec \"$0\" \"$@\" " + options.redirections};
  }
  result.emplace_back(DAEMON_PROGRAM);
  result.insert(result.end(), options.arguments.begin(), options.arguments.end());
  return result;
}

Process::Options processOptions(const Daemon::Options& options, const std::string& logFile) {
  const std::string preload = LOG_CAPTURE_LIBRARY + std::string(":") + options.preload;
  Process::Options result = {.command = command(options),
                             .environment = {{"LC_ALL", "C.UTF-8"},
                                             {"LANG", ""},
                                             {"LANGUAGE", ""},
                                             {"ARGP_HELP_FMT", ""},
                                             {"DBUS_SESSION_BUS_ADDRESS", options.busAddress},
                                             {"ASAN_OPTIONS", sanitizerOptions()},
                                             {"LD_PRELOAD", preload},
                                             {"LOG_CAPTURE_FILE", logFile}},
                             .input = options.text,
                             .inputStaysOpen = options.inputStaysOpen,
                             .outputToPipe = options.outputToPipe};
  for (const auto& [name, value] : options.environment) {
    result.environment[name] = value;
  }
  return result;
}

}  // namespace

Daemon::Daemon(const Options& options) : process_(processOptions(options, logFile())) {}

std::vector<std::string> Daemon::newLogLines() {
  std::vector<std::string> lines;
  std::ifstream file(logFile());
  size_t count = 0;
  const std::string errorPriority = "3|";
  for (std::string line; std::getline(file, line); ++count) {
    if (count >= logLinesRead_) {
      lines.push_back(line.starts_with(errorPriority) ? line.substr(errorPriority.size()) : line);
    }
  }
  logLinesRead_ = count;
  return lines;
}

Ending runToEnd(const std::string& text, const std::vector<std::string>& arguments) {
  Daemon daemon({.text = text, .arguments = arguments});
  return daemon.waitForEnd();
}
