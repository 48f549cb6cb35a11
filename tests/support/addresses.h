// Address space, for tests: how much of it this process has taken.
#pragma once

#include <unistd.h>

#include <fstream>

/// The bytes of address space that this process has taken, whether they are in memory or not; 0
/// where /proc cannot be read.
inline size_t addressesTaken() {
  size_t pages = 0;
  std::ifstream("/proc/self/statm") >> pages;
  return pages * static_cast<size_t>(sysconf(_SC_PAGESIZE));
}
