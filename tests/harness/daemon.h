// The daemon under test: the real program, started on a definition text, its log lines caught.
// Where the environment has a command in DAEMON_WRAPPER, that runs the program.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "tests/harness/process.h"
#include "tests/harness/temp_dir.h"

/// Whether something looks on the daemon that takes memory of its own: a sanitizer, or the wrapper
/// that the environment names.
bool isWatched();

class Daemon {
 public:
  struct Options {
    std::string text = {};                             ///< the definition text
    std::vector<std::string> arguments = {"--debug"};  ///< of the command line
    std::string busAddress = {};                       ///< of the session bus; empty: there is none
    std::map<std::string, std::string> environment = {};  ///< as for Process
    bool inputStaysOpen = false;                          ///< as for Process
    bool outputToPipe = false;                            ///< as for Process
    /// What a shell does with the standard streams before it becomes the daemon, as in "0<&- 1<&-";
    /// empty: there is no shell.
    std::string redirections = {};
    /// A library to be preloaded besides the log capture; empty: none.
    std::string preload = {};
  };
  explicit Daemon(const Options& options);
  /// Fails the test where a sanitizer has reported something.
  ~Daemon();
  Daemon(const Daemon&) = delete;
  Daemon& operator=(const Daemon&) = delete;
  [[nodiscard]] Process& process() { return process_; }
  Ending waitForEnd() { return process_.waitForEnd(); }
  /// The lines that went to the system log since the last call. A line of another priority than
  /// LOG_ERR has the priority and "|" in front.
  std::vector<std::string> newLogLines();

 private:
  [[nodiscard]] std::string logFile() const { return directory_.path() + "/log"; }

  TempDir directory_;
  Process process_;
  size_t logLinesRead_ = 0;
};

/// Runs the daemon to its own end without any bus: for command lines and texts that it refuses.
Ending runToEnd(const std::string& text, const std::vector<std::string>& arguments = {"--debug"});
