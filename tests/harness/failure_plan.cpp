#include "tests/harness/failure_plan.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

FailurePlan::FailurePlan() {
  const int file = open(file_.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
  if (file < 0 || ftruncate(file, sizeof(AllocationFailure)) != 0) {
    perror("failure plan");
    abort();
  }
  void* memory =
      mmap(nullptr, sizeof(AllocationFailure), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
  close(file);
  if (memory == MAP_FAILED) abort();
  shared_ = static_cast<AllocationFailure*>(memory);
}

FailurePlan::~FailurePlan() { munmap(shared_, sizeof(AllocationFailure)); }

void FailurePlan::begin(long successes, long failures) {
  failures_ = failures;
  shared_->successes = successes;
  shared_->failures = failures;
}

bool FailurePlan::end() { return shared_->failures.exchange(0) < failures_; }
