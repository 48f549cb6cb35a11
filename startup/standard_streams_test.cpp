#include "startup/standard_streams.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <string>

namespace {

bool isNullDevice(int descriptor) {
  struct stat one = {};
  struct stat other = {};
  return fstat(descriptor, &one) == 0 && stat("/dev/null", &other) == 0 && S_ISCHR(one.st_mode) &&
         one.st_rdev == other.st_rdev;
}

bool isWriteOnly(int descriptor) {
  char byte = 0;
  return write(descriptor, &byte, 1) == 1 && read(descriptor, &byte, 1) < 0 && errno == EBADF;
}

// Closes the streams of a set, the bit of each being its number, has them opened, and ends the
// process: with 0 when they are the null device, which gives no text that is empty, the others as
// before and nothing else is open.
[[noreturn]] void openAgain(unsigned closed) {
  std::array<int, 2> ends = {};
  if (pipe(ends.data()) != 0) exit(1);
  const int firstFree = dup(ends[0]);
  close(firstFree);
  for (int stream = 0; stream <= STDERR_FILENO; ++stream) {
    dup2(ends[1], stream);
    if ((closed >> static_cast<unsigned>(stream) & 1U) != 0) close(stream);
  }
  openStandardStreams();
  for (int stream = 0; stream <= STDERR_FILENO; ++stream) {
    const bool isClosed = (closed >> static_cast<unsigned>(stream) & 1U) != 0;
    if (isNullDevice(stream) != isClosed) exit(2);
    if (isClosed && !isWriteOnly(stream)) exit(4);
  }
  exit(dup(ends[0]) == firstFree ? 0 : 3);
}

TEST(OpenStandardStreamsDeathTest, OpensWhatIsClosedAndNothingElse) {
  for (unsigned closed = 0; closed < 8; ++closed) {
    SCOPED_TRACE(closed);
    EXPECT_EXIT(openAgain(closed), testing::ExitedWithCode(0), "");
  }
}

}  // namespace
