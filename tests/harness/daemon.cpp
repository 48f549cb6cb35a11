#include "tests/harness/daemon.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace {

constexpr const char* REPORT = "sanitizer";  // what the names of reports begin with

// The sanitizers' options of the test run, which stay in force, and what is added. Reports go to
// files, where also those of a detached daemon are found, and end it with a status of their own.
std::string sanitizerOptions(const char* variable, const std::string& reports) {
  const char* given = getenv(variable);
  return (given == nullptr ? std::string() : std::string(given) + ":") +
         "exitcode=99:log_path=" + reports;
}

// The command that runs the daemon, such as a checking tool with its options: words between blanks.
std::string wrapper() {
  const char* given = getenv("DAEMON_WRAPPER");
  return given == nullptr ? "" : given;
}

std::vector<std::string> command(const Daemon::Options& options) {
  std::vector<std::string> result;
  if (!options.redirections.empty()) {
    result = {"/bin/sh", "-c", "exec \"$0\" \"$@\" " + options.redirections};
  }
  std::istringstream words(wrapper());
  for (std::string word; words >> word;) result.push_back(word);
  result.emplace_back(DAEMON_PROGRAM);
  result.insert(result.end(), options.arguments.begin(), options.arguments.end());
  return result;
}

Process::Options processOptions(const Daemon::Options& options, const std::string& logFile,
                                const std::string& reports) {
  // The preloaded log capture comes before the sanitizers' own library.
  const std::string addressOptions =
      sanitizerOptions("ASAN_OPTIONS", reports) + ":verify_asan_link_order=0";
  const std::string preload = LOG_CAPTURE_LIBRARY + std::string(":") + options.preload;
  Process::Options result = {
      .command = command(options),
      .environment = {{"LC_ALL", "C.UTF-8"},
                      {"LANG", ""},
                      {"LANGUAGE", ""},
                      {"ARGP_HELP_FMT", ""},
                      {"DBUS_SESSION_BUS_ADDRESS", options.busAddress},
                      {"ASAN_OPTIONS", addressOptions},
                      {"UBSAN_OPTIONS", sanitizerOptions("UBSAN_OPTIONS", reports)},
                      {"LD_PRELOAD", preload},
                      {"LOG_CAPTURE_FILE", logFile}},
      .input = options.text,
      .inputStaysOpen = options.inputStaysOpen,
      .outputToPipe = options.outputToPipe};
  for (const auto& [name, value] : options.environment) result.environment[name] = value;
  return result;
}

}  // namespace

bool isWatched() {
#ifdef __SANITIZE_ADDRESS__
  return true;
#else
  return !wrapper().empty();
#endif
}

Daemon::Daemon(const Options& options)
    : process_(processOptions(options, logFile(), directory_.path() + "/" + REPORT)) {}

Daemon::~Daemon() {
  for (const auto& entry : std::filesystem::directory_iterator(directory_.path())) {
    if (!entry.path().filename().string().starts_with(REPORT)) continue;
    std::ifstream report(entry.path());
    std::ostringstream text;
    text << report.rdbuf();
    ADD_FAILURE() << text.str();
  }
}

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
