// Which allocations of the daemon fail: what a test and the library that it preloads share.
#pragma once

#include <atomic>

/// Both count from the start of main() on.
struct AllocationFailure {
  std::atomic<long>
      successes;               ///< so many allocations go well; counted down while others will fail
  std::atomic<long> failures;  ///< then so many fail
};
