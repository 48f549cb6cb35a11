// Processes: a child program whose output is kept whole, and that never outlives its test.
#pragma once

#include <sys/types.h>

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// How a process ended, and all that it wrote.
struct Ending {
  int status = 0;  ///< the exit status, or minus the number of the signal that ended it
  std::string out;
  std::string err;
};

/// No test waits longer than this for anything, in seconds; what takes longer has failed.
extern const int PATIENCE;

class Process {
 public:
  struct Options {
    std::vector<std::string> command = {};  ///< the program first
    /// Added to the test's own environment. An empty value takes the variable away.
    std::map<std::string, std::string> environment = {};
    std::string input = {};  ///< the whole of standard input
    /// Standard input is a pipe that is never closed: after `input` comes neither more nor the end.
    bool inputStaysOpen = false;
    /// Standard output is a pipe instead of a file.
    bool outputToPipe = false;
  };
  explicit Process(const Options& options);
  /// Kills the process if it still runs.
  ~Process();
  Process(const Process&) = delete;
  Process& operator=(const Process&) = delete;

  [[nodiscard]] pid_t pid() const { return pid_; }
  /// Becomes readable when the process ends.
  [[nodiscard]] int endDescriptor() const { return end_; }
  [[nodiscard]] bool running() const;
  /// Writes to the open standard input of a process with inputStaysOpen.
  void write(std::string_view text) const;
  /// The next line of a standard output that is a pipe, without its newline; empty when there is
  /// none in time.
  [[nodiscard]] std::string readLine() const;
  /// Waits for the end. A process that does not end in time is killed and fails the test.
  Ending waitForEnd();
  /// What has been written to standard error so far.
  [[nodiscard]] std::string errorsSoFar() const;

 private:
  pid_t pid_ = -1;
  int end_ = -1;
  int input_ = -1;
  int out_ = -1;
  int err_ = -1;
  bool outputToPipe_ = false;
  bool reaped_ = false;
};

/// Waits until `descriptor` is readable; false when it is not in time.
bool waitUntilReadable(int descriptor);

/// The one child of this process besides `known`; 0 when there is none.
pid_t childBesides(pid_t known);

/// How long a process has worked, in clock ticks.
long workedTicks(pid_t pid);
/// Waits until a process has worked for two more of them; fails the test when it has not in time.
void waitForWork(pid_t pid);

/// How much memory a process has, in KiB, by what the system calls `figure`: "VmRSS:" now, "VmHWM:"
/// at most so far.
size_t memoryOf(pid_t pid, std::string_view figure);

/// The number of open file descriptors of a process.
size_t openDescriptors(pid_t pid);
