// Exhausted memory at the start: the daemon says so and ends with status 1, or serves.
#include "tests/harness/failure_plan.h"
#include "tests/harness/service_test.h"

namespace {

constexpr const char* LAST_WORDS = "Error starting the service: out of memory\n";

// Something of everything that is made at the start.
constexpr const char* DEFINITIONS = R"(
mode    rw { rangeValid { "1080i/50", "720p/50" } default { "1080i/50" } }
level   rw { rangeValid { 0..(vidStd::mode::spal - 1) } default (mode == "720p/50") { 5 } }
channel index { rangeValid { 1..2 } ctrlValid (level > 3 && VARIANT == "pro, with all that it has") }
note    rw { ctrlRO (mode == "a text for which no object has room in itself")
             valueChange { "on" -> "another text for which no object has room in itself" } }
gain    rw { index { channel }
             rangeValid (VARIANT == 0) { 7 }
             rangeValid { 0..(level), "no gain at all, for the longest time" }
             rangeDoc { 0..100 }
             default { (level $ "and more of it than any object has room for") } }
)";

const std::vector<std::string> ARGUMENTS = {"--debug", "--bus=with_a_long_suffix",
                                            "--obj_path=with_a_long_suffix_too",
                                            "VARIANT=pro, with all that it has"};

class ExhaustedStartTest : public testing::TestWithParam<long> {
 protected:
  void SetUp() override {
    client_.setTarget("org.tavrel.transaction.with_a_long_suffix",
                      "/transaction/with_a_long_suffix_too");
  }

  // Starts the daemon on `text`; after so many allocations, others fail. Returns whether it got
  // that far: a daemon that serves all the same has done without.
  bool isMetAfter(long successes, const std::string& text) {
    plan_.begin(successes, GetParam());
    Daemon daemon({.text = text,
                   .arguments = ARGUMENTS,
                   .busAddress = bus_.address(),
                   .environment = {{"ALLOCATION_FAILURE_FILE", plan_.file()}},
                   .preload = ALLOCATION_FAILURE_LIBRARY});
    const bool serves = client_.waitForService(daemon.process()) && isAnswered("start()");
    const bool isMet = plan_.end();
    if (serves) {
      EXPECT_EQ(client_.answer("die()"), "()");
    }
    const Ending ending = daemon.waitForEnd();
    EXPECT_EQ(ending.status, 1);
    EXPECT_EQ(ending.err, serves ? "" : LAST_WORDS);
    ends_ += serves ? 0 : 1;
    return isMet;
  }
  [[nodiscard]] int ends() const { return ends_; }

  // What the daemon writes to standard error that refuses `text`.
  std::string errorsAfter(long successes, const std::string& text) {
    plan_.begin(successes, GetParam());
    Daemon daemon({.text = text,
                   .environment = {{"ALLOCATION_FAILURE_FILE", plan_.file()}},
                   .preload = ALLOCATION_FAILURE_LIBRARY});
    const Ending ending = daemon.waitForEnd();
    EXPECT_EQ(ending.status, 1);
    return ending.err;
  }

 private:
  // Of a daemon that ends, the bus tells that nobody answers.
  bool isAnswered(const std::string& call) {
    return !client_.answer(call).starts_with("org.freedesktop.DBus.Error.");
  }

  int ends_ = 0;
  FailurePlan plan_;
  PrivateBus bus_;
  Client client_{bus_.address()};
};

TEST_P(ExhaustedStartTest, IsReportedWhicheverAllocationFails) {
  bool isMet = true;
  for (long successes = 0; isMet && !HasFailure(); ++successes) {
    SCOPED_TRACE(successes);
    isMet = isMetAfter(successes, DEFINITIONS);
  }
  EXPECT_GT(ends(), 100);
}

// A daemon that refuses its text: what it says is complete, or the last words are at its end.
TEST_P(ExhaustedStartTest, IsReportedBehindDiagnostics) {
  const std::string texts[] = {
      "# a comment\nfirst rw { default { 3 } }\ngain no { }\n",
      "gain rw { rangeValid { 2..1 } ctrlRO (missing_and_with_a_long_name == 1) ctrlRO (1 2) }\n"};
  for (const std::string& text : texts) {
    SCOPED_TRACE(text);
    const std::string complete = errorsAfter(INT32_MAX, text);
    EXPECT_NE(complete, "");
    std::string errors;
    for (long successes = 0; errors != complete; ++successes) {
      errors = errorsAfter(successes, text);
      EXPECT_TRUE(errors == complete || errors.ends_with(LAST_WORDS)) << errors;
      ASSERT_FALSE(HasFailure()) << successes;
    }
  }
}

// A single allocation, or all from there on.
INSTANTIATE_TEST_SUITE_P(ForSoManyAllocations, ExhaustedStartTest, testing::Values(1, 1000000));

TEST(ExhaustedStart, IsReportedWhereTheSystemGivesNoMore) {
  if (isWatched()) GTEST_SKIP() << "what looks on the daemon needs the memory itself";
  std::string text;
  for (int i = 0; i < 50000; ++i) {
    text += "parameter_" + std::to_string(i) + " rw { rangeValid { 0..9 } default { 1 } }\n";
  }
  for (const char* limit : {"30000", "45000", "60000"}) {  // in KiB of addresses
    SCOPED_TRACE(limit);
    const std::string command = std::string("ulimit -v ") + limit + "; exec \"$0\" --debug";
    Process process({.command = {"/bin/sh", "-c", command, DAEMON_PROGRAM}, .input = text});
    const Ending ending = process.waitForEnd();
    EXPECT_EQ(ending.status, 1);
    EXPECT_EQ(ending.err, LAST_WORDS);
  }
}

}  // namespace
