// The mappings of memory that the program makes, for tests. To be included by one source of a
// program. The C library's own are not among them.
#pragma once

#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>

struct Mappings {
  inline static size_t most = 0;      ///< the bytes of the largest one that was asked for
  inline static bool succeed = true;  ///< or there is no memory
};

extern "C" void* mmap(void* address, size_t size, int protection, int flags, int file,
                      off_t offset) noexcept {
  Mappings::most = std::max(Mappings::most, size);
  if (!Mappings::succeed) {
    errno = ENOMEM;
    return MAP_FAILED;
  }
  return reinterpret_cast<void*>(syscall(SYS_mmap, address, size, protection, flags, file, offset));
}
