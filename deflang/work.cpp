#include "deflang/work.h"

#include <new>

#include "deflang/system_log.h"

std::string workText(uint64_t needed, uint64_t allowed) {
  return std::to_string(needed) + " units of work, " + std::to_string(allowed) + " allowed";
}

void Work::exceed(uint64_t units) {
  wanted_ = addedWork(done(), units);
  left_ = 0;
  throw WorkExceeded();
}

void Work::logExceeded() noexcept {
  try {
    const std::string name = subject_ == nullptr ? std::string() : *subject_;
    logError("work: ERROR \"" + name + "\": " + workText(wanted_, budget_));
  } catch (const std::bad_alloc&) {
    // The client still gets its error.
  }
}
