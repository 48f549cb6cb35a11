// How many random cases a test tries.
#pragma once

#include <cstdint>

/// `count`, or a tenth of it under the sanitizers, where a case takes up to ten times as long:
/// they look at how a case is worked out, and what the cases show together is for the other builds.
constexpr uint32_t randomCount(uint32_t count) {
#ifdef __SANITIZE_ADDRESS__
  return count / 10;
#else
  return count;
#endif
}
