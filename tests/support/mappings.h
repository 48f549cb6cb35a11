// The mappings of memory that the program makes, counted and failing at will, for tests. To be
// included by one source of a program: it replaces mmap, mremap and munmap of the program. Mappings
// that the C library makes for itself are not counted.
#pragma once

#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>

/// What has been asked for, and whether it will be given.
struct Mappings {
  inline static size_t most = 0;      ///< the bytes of the largest mapping that was asked for
  inline static size_t kept = 0;      ///< the bytes that are mapped now
  inline static bool succeed = true;  ///< false: attempts fail with ENOMEM
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
#ifdef SYS_mmap2  // of machines with 32 bits; it counts the offset in pages
  const long result = syscall(SYS_mmap2, addr, len, prot, flags, fd, offset / 4096);
#else
  const long result = syscall(SYS_mmap, addr, len, prot, flags, fd, offset);
#endif
  void* const memory = reinterpret_cast<void*>(result);
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
