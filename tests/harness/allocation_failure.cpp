// Allocation failure: preloaded into the daemon, it makes allocations of C++ objects fail as the
// test says, through the file that ALLOCATION_FAILURE_FILE names and both have mapped.
#include "tests/harness/allocation_failure.h"

#include <dlfcn.h>

#include <cstdlib>
#include <new>

namespace {

using Main = int (*)(int, char**, char**);

Main programMain = nullptr;
bool isInMain = false;

int countedMain(int argc, char** argv, char** environment) {
  isInMain = true;
  return programMain(argc, argv, environment);
}

void* allocated(size_t size, size_t alignment = alignof(max_align_t)) {
  static AllocationFailure* const plan = openPlan();
  if (isInMain && plan->failures > 0 && plan->successes-- <= 0) {
    --plan->failures;
    throw std::bad_alloc();
  }
  void* memory = nullptr;
  if (posix_memalign(&memory, alignment, size) != 0) throw std::bad_alloc();
  return memory;
}

}  // namespace

// What the C library begins with: it makes the objects that live as long as the program, and then
// calls main().
// NOLINTNEXTLINE(readability-identifier-naming,bugprone-reserved-identifier)
extern "C" int __libc_start_main(Main main, int argc, char** argv, void (*init)(), void (*finish)(),
                                 void (*finishLoader)(), void* stackEnd) {
  programMain = main;
  const auto next =
      reinterpret_cast<decltype(&__libc_start_main)>(dlsym(RTLD_NEXT, "__libc_start_main"));
  return next(countedMain, argc, argv, init, finish, finishLoader, stackEnd);
}

void* operator new(size_t size) { return allocated(size); }
void* operator new[](size_t size) { return allocated(size); }
void* operator new(size_t size, std::align_val_t alignment) {
  return allocated(size, static_cast<size_t>(alignment));
}
void* operator new[](size_t size, std::align_val_t alignment) {
  return allocated(size, static_cast<size_t>(alignment));
}
void operator delete(void* memory) noexcept { free(memory); }
void operator delete[](void* memory) noexcept { free(memory); }
void operator delete(void* memory, size_t /*size*/) noexcept { free(memory); }
void operator delete[](void* memory, size_t /*size*/) noexcept { free(memory); }
void operator delete(void* memory, std::align_val_t /*alignment*/) noexcept { free(memory); }
void operator delete[](void* memory, std::align_val_t /*alignment*/) noexcept { free(memory); }
void operator delete(void* memory, size_t /*size*/, std::align_val_t /*alignment*/) noexcept {
  free(memory);
}
void operator delete[](void* memory, size_t /*size*/, std::align_val_t /*alignment*/) noexcept {
  free(memory);
}
