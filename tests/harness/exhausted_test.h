// The fixture of tests in which allocations of the daemon fail while it serves.
#pragma once

#include <map>
#include <memory>
#include <span>
#include <string>

#include "tests/harness/failure_plan.h"
#include "tests/harness/service_test.h"

/// One call, with what makes the situation for it (empty: nothing) and what it answers.
struct CallCase {
  const char* before;
  const char* call;
  const char* answer;
};

/// Calls of every method but start and die, whose answers are the same at each repetition.
std::span<const CallCase> repeatableCalls();

/// Whether an answer is that of a method that found no memory.
bool isOfExhaustedMemory(const std::string& answer);

class ExhaustedTest : public testing::Test {
 protected:
  /// `library` is preloaded and makes allocations fail.
  explicit ExhaustedTest(const char* library) : library_(library) {}
  /// Starts a daemon for the repeatable calls.
  void startDaemon();
  /// Makes a call and, after so many allocations, lets `failures` others fail; tells in `isMet`
  /// whether it got that far.
  std::string answerAfter(long successes, long failures, const std::string& call, bool& isMet);
  /// Checks that every value is the last that a signal has told of it.
  void expectTold();
  void expectOrderlyEnd();
  [[nodiscard]] Client& client() { return client_; }
  [[nodiscard]] Daemon& daemon() { return *daemon_; }

 private:
  const char* library_;
  std::map<std::string, std::string> told_;
  FailurePlan plan_;
  PrivateBus bus_;
  Client client_{bus_.address()};
  std::unique_ptr<Daemon> daemon_;
};
