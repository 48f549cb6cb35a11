#include "tests/harness/hostile_test.h"

#include <unistd.h>

namespace {

constexpr const char* DEFINITIONS = R"(
witness rw { rangeValid { 0..9 } default { 7 } }
note    rw { }
level   rw { rangeValid { 0..9 } default { 5 } }
channel index { rangeValid { 1..2 } }
gain    rw { index { channel } rangeValid { 0..(level) } default { 1 } }
place   index { rangeValid { 1..100000 } }
wide    rw { index { place } rangeValid { 0..9 } default { 3 } }
)";

// The daemon may just be writing a line of its log; only what stays is left behind.
bool settlesAt(pid_t pid, size_t descriptors) {
  const gint64 deadline = g_get_monotonic_time() + PATIENCE * G_TIME_SPAN_SECOND;
  while (openDescriptors(pid) != descriptors) {
    if (g_get_monotonic_time() > deadline) return false;
    usleep(1000);
  }
  return true;
}

}  // namespace

void HostileTest::SetUp() {
  serve(DEFINITIONS);
  ASSERT_EQ(client().answer("start()"), "0");
  witness_ = std::make_unique<Client>(bus().address());
  ASSERT_EQ(witness_->answer("single_set('witness', '7')"), "()");
  ASSERT_EQ(witness_->answer("single_set('level', '5')"), "()");
  descriptors_ = openDescriptors(daemon().process().pid());
}

void HostileTest::expectSound() {
  ASSERT_TRUE(daemon().process().running());
  EXPECT_EQ(witness_->answer("single_get('witness')"), "'7'");
  EXPECT_TRUE(settlesAt(daemon().process().pid(), descriptors_))
      << openDescriptors(daemon().process().pid()) << " descriptors instead of " << descriptors_;
  static_cast<void>(witness_->newSignals());
  static_cast<void>(client().newSignals());
  static_cast<void>(daemon().newLogLines());
}
