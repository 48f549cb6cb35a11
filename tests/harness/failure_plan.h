// Failure plan: which allocations of a daemon fail, for the tests.
#pragma once

#include <string>

#include "tests/harness/allocation_failure.h"
#include "tests/harness/temp_dir.h"

/// What a library that the daemon preloads reads, while the daemon runs.
class FailurePlan {
 public:
  FailurePlan();
  ~FailurePlan();
  FailurePlan(const FailurePlan&) = delete;
  FailurePlan& operator=(const FailurePlan&) = delete;

  /// For the environment of the daemon, as ALLOCATION_FAILURE_FILE.
  [[nodiscard]] const std::string& file() const { return file_; }
  /// After `successes` allocations that go well, `failures` will fail.
  void begin(long successes, long failures);
  /// From now on none fails. Returns whether one has since begin().
  bool end();

 private:
  TempDir directory_;
  std::string file_ = directory_.path() + "/plan";
  AllocationFailure* shared_ = nullptr;
  long failures_ = 0;
};
