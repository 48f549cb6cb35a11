// Programs that run beside this one.
#pragma once

#include <gio/gio.h>

#include <memory>
#include <string>
#include <vector>

/// Where what a program writes goes.
enum ChildOutput {
  CHILD_OUTPUT_SHARED,     ///< where this process's goes
  CHILD_OUTPUT_TO_ERRORS,  ///< both outputs where standard error goes
  CHILD_OUTPUT_DROPPED,    ///< of standard output nowhere
  CHILD_OUTPUT_PIPE,  ///< of standard output into a pipe; what goes to standard error is dropped
};

/// How a program is started.
struct ChildOptions {
  std::vector<std::string> command = {};  ///< the program first; looked for where a shell would
  std::string busAddress = {};            ///< of its session bus
  bool takesInput = false;                ///< standard input is a pipe instead of this process's
  ChildOutput output = CHILD_OUTPUT_SHARED;
};

/// A program; ends with the object, by SIGTERM where it still runs.
class ChildProgram {
 public:
  /// Returns null where it cannot be started, and says why in `error`.
  static std::unique_ptr<ChildProgram> start(const ChildOptions& options, std::string& error);
  ~ChildProgram();
  ChildProgram(const ChildProgram&) = delete;
  ChildProgram& operator=(const ChildProgram&) = delete;

  /// All of its standard input, which takesInput has made a pipe.
  void giveInput(const std::string& text);
  /// The first line of standard output, which CHILD_OUTPUT_PIPE has made a pipe, without its
  /// newline; empty where there is none.
  std::string firstLine();
  /// Whether it has ended. That it has, wakes up the default main context.
  [[nodiscard]] bool hasEnded() const { return *hasEnded_; }
  /// Of one that has ended: whether that was with status 0.
  [[nodiscard]] bool hasSucceeded() const;

 private:
  explicit ChildProgram(GSubprocess* process);

  GSubprocess* const process_;
  const std::shared_ptr<bool> hasEnded_ = std::make_shared<bool>(false);
};
