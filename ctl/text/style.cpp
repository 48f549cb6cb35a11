#include "ctl/text/style.h"

#include <unistd.h>

#include <cstdlib>

bool isColoured(int descriptor) {
  const char* const noColour = std::getenv("NO_COLOR");
  return isatty(descriptor) != 0 && (noColour == nullptr || *noColour == '\0');
}
