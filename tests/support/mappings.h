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

// What a sanitizer maps before the program begins is not the program's.
inline const bool COUNTED_FROM_HERE = [] {
  Mappings::most = 0;
  Mappings::kept = 0;
  return true;
}();

// NOLINTBEGIN(performance-no-int-to-ptr): the system gives addresses as numbers.
extern "C" void* mmap(void* addr, size_t len, int prot, int flags, int fd, off_t offset) noexcept {
  Mappings::most = std::max(Mappings::most, len);
  if (!Mappings::succeed) {
    errno = ENOMEM;
    return MAP_FAILED;
  }
  void* const memory =
      reinterpret_cast<void*>(syscall(SYS_mmap, addr, len, prot, flags, fd, offset));
  if (memory != MAP_FAILED) Mappings::kept += len;
  return memory;
}

// NOLINTNEXTLINE(readability-inconsistent-declaration-parameter-name)
extern "C" void* mremap(void* addr, size_t before, size_t len, int flags, ...) noexcept {
  Mappings::most = std::max(Mappings::most, len);
  if (!Mappings::succeed) {
    errno = ENOMEM;
    return MAP_FAILED;
  }
  void* const memory = reinterpret_cast<void*>(syscall(SYS_mremap, addr, before, len, flags));
  if (memory != MAP_FAILED) Mappings::kept += len - before;
  return memory;
}
// NOLINTEND(performance-no-int-to-ptr)

extern "C" int munmap(void* addr, size_t len) noexcept {
  const long result = syscall(SYS_munmap, addr, len);
  if (result == 0) Mappings::kept -= len;
  return static_cast<int>(result);
}
