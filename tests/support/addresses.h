// What a process has of the address space, for tests.
#pragma once

#include <unistd.h>

#include <fstream>

/// In bytes.
inline size_t addressesTaken() {
  size_t pages = 0;
  std::ifstream("/proc/self/statm") >> pages;
  return pages * static_cast<size_t>(sysconf(_SC_PAGESIZE));
}
