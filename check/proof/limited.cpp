#include "check/proof/limited.h"

#include <new>

#include "base/work.h"

bool doWithin(uint64_t units, const std::function<void()>& act) {
  bool isDone = false;
  Work::begin(units);
  try {
    act();
    isDone = true;
  } catch (const WorkExceeded&) {
    // A larger text than anybody waits for.
  } catch (const std::bad_alloc&) {
    // What was taken is given back by now.
  }
  Work::begin(UINT64_MAX);
  return isDone;
}
