#include "sw/dbus/memory_reserve.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <new>

void requireMemory(size_t bytes) {
  MemoryReserve reserve;
  if (!reserve.grow(bytes)) throw std::bad_alloc();
}

// The heap grows in large steps, so the system is seldom asked.
void requireHeadroom() {
  static const void* knownEnd = nullptr;
  if (sbrk(0) == knownEnd) return;
  requireMemory(HEADROOM);
  knownEnd = sbrk(0);
}

// Grows to twice the size, so that it grows seldom; or, where memory does not suffice for that, to
// what is needed.
bool MemoryReserve::extend(size_t bytes) {
  for (const size_t size : {std::max(bytes, 2 * size_), bytes}) {
    void* const memory = memory_ == nullptr ? mmap(nullptr, size, PROT_READ | PROT_WRITE,
                                                   MAP_PRIVATE | MAP_ANONYMOUS, -1, 0)
                                            : mremap(memory_, size_, size, MREMAP_MAYMOVE);
    if (memory != MAP_FAILED) {
      memory_ = memory;
      size_ = size;
      return true;
    }
  }
  return false;
}

void MemoryReserve::giveBack() noexcept {
  if (memory_ != nullptr) munmap(memory_, size_);
  memory_ = nullptr;
  size_ = 0;
}
