#include "sw/dbus/null_check.h"

#include <cassert>

void assertNotNull(const void* pointer, const char* expression, const char* function) {
  if (pointer == nullptr) __assert_fail(expression, __FILE__, __LINE__, function);
}
