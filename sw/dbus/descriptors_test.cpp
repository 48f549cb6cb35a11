#include "sw/dbus/descriptors.h"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>

namespace {

sa_family_t familyOf(int descriptor) {
  sockaddr_storage name = {};
  socklen_t size = sizeof name;
  return getsockname(descriptor, reinterpret_cast<sockaddr*>(&name), &size) == 0 ? name.ss_family
                                                                                 : AF_MAX;
}

TEST(WithoutDescriptors, HidesWhatASocketIsWhileItLives) {
  std::array<int, 2> pair = {};
  ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM, 0, pair.data()), 0);
  EXPECT_EQ(familyOf(pair[0]), AF_UNIX);
  {
    const WithoutDescriptors withoutDescriptors;
    EXPECT_EQ(familyOf(pair[0]), AF_UNSPEC);
  }
  EXPECT_EQ(familyOf(pair[0]), AF_UNIX);
  for (const int end : pair) close(end);
  EXPECT_EQ(familyOf(pair[0]), AF_MAX);
  EXPECT_EQ(errno, EBADF);
}

}  // namespace
