// Heap failure: preloaded into the daemon, it makes allocations fail as the test says, whoever asks
// for them: the daemon, GLib, the bus library, the C library. The plan is in the file that
// ALLOCATION_FAILURE_FILE names and both have mapped.
#include <dlfcn.h>

#include <cerrno>
#include <cstdlib>

#include "tests/harness/allocation_failure.h"

// NOLINTBEGIN(readability-identifier-naming,bugprone-reserved-identifier)
extern "C" {
void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* memory, size_t size);
void* __libc_memalign(size_t alignment, size_t size);
}

namespace {

using Main = int (*)(int, char**, char**);

Main programMain = nullptr;
AllocationFailure* plan = nullptr;  // null until main()

int countedMain(int argc, char** argv, char** environment) {
  plan = openPlan();
  return programMain(argc, argv, environment);
}

bool fails() {
  if (plan == nullptr || plan->failures <= 0 || plan->successes-- > 0) return false;
  --plan->failures;
  errno = ENOMEM;
  return true;
}

}  // namespace

extern "C" {

int __libc_start_main(Main main, int argc, char** argv, void (*init)(), void (*finish)(),
                      void (*finishLoader)(), void* stackEnd) {
  programMain = main;
  const auto next =
      reinterpret_cast<decltype(&__libc_start_main)>(dlsym(RTLD_NEXT, "__libc_start_main"));
  return next(countedMain, argc, argv, init, finish, finishLoader, stackEnd);
}

void* malloc(size_t size) { return fails() ? nullptr : __libc_malloc(size); }
void* calloc(size_t nmemb, size_t size) { return fails() ? nullptr : __libc_calloc(nmemb, size); }
void* realloc(void* ptr, size_t size) { return fails() ? nullptr : __libc_realloc(ptr, size); }
void* aligned_alloc(size_t alignment, size_t size) {
  return fails() ? nullptr : __libc_memalign(alignment, size);
}
int posix_memalign(void** memptr, size_t alignment, size_t size) {
  *memptr = aligned_alloc(alignment, size);
  return *memptr == nullptr ? ENOMEM : 0;
}
}
// NOLINTEND(readability-identifier-naming,bugprone-reserved-identifier)
