#include "base/terminal.h"

#include <unistd.h>

#include <cstdlib>
#include <string_view>

namespace {

std::string_view variable(const char* name) {
  const char* const value = std::getenv(name);
  return value == nullptr ? std::string_view() : value;
}

}  // namespace

bool isColoured(int descriptor) {
  const std::string_view terminal = variable("TERM");
  return isatty(descriptor) != 0 && !terminal.empty() && terminal != "dumb" &&
         variable("NO_COLOR").empty();
}
