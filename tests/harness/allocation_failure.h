// Which allocations of the daemon fail: what a test and the library that it preloads share.
#pragma once

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>

/// Both count from the start of main() on.
struct AllocationFailure {
  std::atomic<long>
      successes;               ///< so many allocations go well; counted down while others will fail
  std::atomic<long> failures;  ///< then so many fail
};

/// For the library: the plan in the file that ALLOCATION_FAILURE_FILE names. Without one it ends
/// the process.
inline AllocationFailure* openPlan() {
  const char* file = getenv("ALLOCATION_FAILURE_FILE");
  const int descriptor = file == nullptr ? -1 : open(file, O_RDWR | O_CLOEXEC);
  if (descriptor < 0) abort();
  void* memory =
      mmap(nullptr, sizeof(AllocationFailure), PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0);
  if (memory == MAP_FAILED) abort();
  close(descriptor);
  return static_cast<AllocationFailure*>(memory);
}
