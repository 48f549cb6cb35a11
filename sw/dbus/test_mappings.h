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
  inline static size_t kept = 0;      ///< the bytes that are mapped now
  inline static bool succeed = true;  ///< or there is no memory
};

extern "C" void* mmap(void* address, size_t size, int protection, int flags, int file,
                      off_t offset) noexcept {
  Mappings::most = std::max(Mappings::most, size);
  if (!Mappings::succeed) {
    errno = ENOMEM;
    return MAP_FAILED;
  }
  void* const memory =
      reinterpret_cast<void*>(syscall(SYS_mmap, address, size, protection, flags, file, offset));
  if (memory != MAP_FAILED) Mappings::kept += size;
  return memory;
}

extern "C" void* mremap(void* address, size_t before, size_t size, int flags, ...) noexcept {
  Mappings::most = std::max(Mappings::most, size);
  if (!Mappings::succeed) {
    errno = ENOMEM;
    return MAP_FAILED;
  }
  void* const memory = reinterpret_cast<void*>(syscall(SYS_mremap, address, before, size, flags));
  if (memory != MAP_FAILED) Mappings::kept += size - before;
  return memory;
}

extern "C" int munmap(void* address, size_t size) noexcept {
  const long result = syscall(SYS_munmap, address, size);
  if (result == 0) Mappings::kept -= size;
  return static_cast<int>(result);
}
