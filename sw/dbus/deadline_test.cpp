#include "sw/dbus/deadline.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <semaphore>

namespace {

constexpr int MINUTE = 60000;

TEST(Deadline, IsMetWhenItGoesInTime) {
  std::atomic<bool> isMissed = false;
  {
    const Deadline deadline(MINUTE, [&] { isMissed = true; });
  }
  EXPECT_FALSE(isMissed);
}

TEST(Deadline, IsMissedWhenItIsStillThere) {
  std::binary_semaphore missed(0);
  const Deadline deadline(1, [&] { missed.release(); });
  missed.acquire();  // for ever, if it were not missed
}

TEST(DeadlineDeathTest, MayEndTheProcess) {
  const auto outlast = [] {
    const Deadline deadline(1, [] { exit(7); });
    pause();
  };
  EXPECT_EXIT(outlast(), testing::ExitedWithCode(7), "");
}

}  // namespace
