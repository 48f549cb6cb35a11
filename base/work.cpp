#include "base/work.h"

std::string workText(uint64_t needed, uint64_t allowed) {
  return std::to_string(needed) + " units of work, " + std::to_string(allowed) + " allowed";
}

void Work::exceed(uint64_t units) {
  wanted_ = addedWork(done(), units);
  left_ = 0;
  throw WorkExceeded();
}

std::string Work::exceededText() {
  const std::string name = subject_ == nullptr ? std::string() : *subject_;
  return "work: ERROR \"" + name + "\": " + workText(wanted_, budget_);
}
