#include "sw/dbus/log_watch.h"

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <sys/socket.h>

#include <cerrno>
#include <string>
#include <vector>

#include "base/system_log.h"

namespace {

gint64 now = 0;                  // in microseconds
std::vector<gint64> times;       // for which the watch was set
bool takesLines = true;          // the log
std::vector<std::string> taken;  // by the log, without what is before a line

}  // namespace

// In the place of those of the libraries. The log is a socket that nobody reads.
extern "C" gint64 g_get_monotonic_time() { return now; }
extern "C" void g_source_set_ready_time(GSource* source, gint64 time) {
  times.push_back(time);
  using Setter = void (*)(GSource*, gint64);
  static const auto set = reinterpret_cast<Setter>(dlsym(RTLD_NEXT, "g_source_set_ready_time"));
  set(source, time);
}
extern "C" int connect(int /*socket*/, const sockaddr* /*address*/, socklen_t /*size*/) {
  return 0;
}
extern "C" ssize_t sendmsg(int /*socket*/, const msghdr* message, int /*flags*/) {
  if (!takesLines) {
    errno = EAGAIN;
    return -1;
  }
  const iovec& line = message->msg_iov[1];
  taken.emplace_back(static_cast<const char*>(line.iov_base), line.iov_len);
  return static_cast<ssize_t>(message->msg_iov[0].iov_len + line.iov_len);
}

namespace {

using Times = std::vector<gint64>;
using Lines = std::vector<std::string>;

constexpr gint64 NEVER = -1;
constexpr gint64 SECOND = G_TIME_SPAN_SECOND;

// The times for which the watch was set in this round of the main loop.
Times timesOfRound() {
  times.clear();
  g_main_context_iteration(nullptr, FALSE);
  return times;
}

class LogWatchTest : public testing::Test {
 protected:
  LogWatchTest() {
    now = SECOND;  // long ago
    takesLines = false;
    taken.clear();
    times.clear();
  }
};

TEST_F(LogWatchTest, TriesASecondAfterTheFirstLineThatIsLost) {
  const LogWatch watch;
  logError("one");
  EXPECT_EQ(times, Times{2 * SECOND});
  now += SECOND / 2;
  logError("two");
  EXPECT_EQ(times, Times{2 * SECOND});  // further lines do not put it off
  takesLines = true;
  EXPECT_EQ(timesOfRound(), Times{NEVER});
  EXPECT_EQ(taken, Lines{"log: ERROR: lines lost: 2"});
  EXPECT_EQ(timesOfRound(), Times{});
}

TEST_F(LogWatchTest, TriesOnceASecondUntilTheLogTakesLines) {
  const LogWatch watch;
  logError("one");
  for (int round = 0; round < 3; ++round) {
    now += SECOND;
    EXPECT_EQ(timesOfRound(), (Times{NEVER, now + SECOND}));
    EXPECT_EQ(taken, Lines{});
  }
  takesLines = true;
  EXPECT_EQ(timesOfRound(), Times{NEVER});
  EXPECT_EQ(taken, Lines{"log: ERROR: lines lost: 1"});
}

TEST_F(LogWatchTest, TriesALastTimeAtItsEnd) {
  {
    const LogWatch watch;
    logError("one");
    takesLines = true;
  }
  EXPECT_EQ(taken, Lines{"log: ERROR: lines lost: 1"});
  takesLines = false;
  times.clear();
  logError("two");  // nobody watches any more
  EXPECT_EQ(times, Times{});
  now += 2 * SECOND;
  EXPECT_EQ(timesOfRound(), Times{});  // not for the first line either
  takesLines = true;
  EXPECT_FALSE(tellLostLines());
}

}  // namespace
