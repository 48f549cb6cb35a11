#include "startup/standard_streams.h"

#include <fcntl.h>
#include <unistd.h>

void openStandardStreams() {
  int descriptor = -1;
  do {
    descriptor = open("/dev/null", O_WRONLY);
  } while (0 <= descriptor && descriptor <= STDERR_FILENO);
  // Negative where the null device cannot be opened.
  if (descriptor >= 0) close(descriptor);
}
