#include "base/terminal.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>

namespace {

// The other side of a terminal is one, too.
TEST(Terminal, IsColouredWhereItCanBe) {
  const int terminal = posix_openpt(O_RDWR | O_NOCTTY);
  const int file = open("/dev/null", O_WRONLY);
  ASSERT_GE(terminal, 0);
  ASSERT_GE(file, 0);
  const struct {
    const char* kind;
    const char* noColour;
    bool isColoured;
  } cases[] = {
      {"xterm", nullptr, true}, {"xterm", "", true},      {"xterm", "1", false},
      {"dumb", nullptr, false}, {"", nullptr, false},     {nullptr, nullptr, false},
      {"vt100", "0", false},    {"linux", nullptr, true},
  };
  for (const auto& c : cases) {
    c.kind == nullptr ? unsetenv("TERM") : setenv("TERM", c.kind, 1);
    c.noColour == nullptr ? unsetenv("NO_COLOR") : setenv("NO_COLOR", c.noColour, 1);
    EXPECT_EQ(isColoured(terminal), c.isColoured)
        << (c.kind == nullptr ? "unset" : c.kind) << (c.noColour == nullptr ? "" : " NO_COLOR");
    EXPECT_FALSE(isColoured(file));
  }
  close(terminal);
  close(file);
}

}  // namespace
