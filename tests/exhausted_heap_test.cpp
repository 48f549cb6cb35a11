// An exhausted heap: whichever allocation fails, of the daemon, of GLib or of the bus library, a
// call gets its answer or an error, or the process says why it ends. It never ends by a signal, and
// nothing is committed that no signal has told.
#include <algorithm>
#include <cstring>
#include <iterator>
#include <sstream>

#include "tests/harness/exhausted_test.h"

namespace {

constexpr const char* LAST_WORDS =
    "Transaction server: ERROR: Out of memory (the service cannot go on)\n";

// Whether every line says that memory is missing: for an array of a reply, which is waited for,
// and by GLib for its locks and its pools.
bool isOfMemory(const std::string& errors) {
  std::istringstream lines(errors);
  for (std::string line; std::getline(lines, line);) {
    if (!line.empty() && !line.ends_with(" - out of memory") &&
        line.find("Cannot allocate memory") == std::string::npos) {
      ADD_FAILURE() << line;
      return false;
    }
  }
  return true;
}

// So many allocations fail, after 0, `step`, 2 * `step`... that go well.
struct Failures {
  long failures;
  long step;
};

class ExhaustedHeapTest : public ExhaustedTest, public testing::WithParamInterface<Failures> {
 protected:
  ExhaustedHeapTest() : ExhaustedTest(HEAP_FAILURE_LIBRARY) {}
  void SetUp() override {
    if (isWatched()) GTEST_SKIP() << "the heap is that of the tool that looks on the daemon";
    startDaemon();
  }

  // Whether the service goes on; otherwise checks how it has ended, and starts another.
  bool goesOn(const std::string& answer) {
    if (!answer.starts_with("org.freedesktop.DBus.Error.")) {
      EXPECT_TRUE(isOfMemory(daemon().process().errorsSoFar()));
      return true;
    }
    const Ending ending = daemon().waitForEnd();
    EXPECT_EQ(ending.status, 1);
    EXPECT_TRUE(ending.err.ends_with(LAST_WORDS)) << ending.err;
    EXPECT_TRUE(isOfMemory(ending.err.substr(0, ending.err.size() - strlen(LAST_WORDS))));
    const std::vector<std::string> log = daemon().newLogLines();
    EXPECT_EQ(log.empty() ? "" : log.back(), "service: ERROR: out of memory, ended");
    startDaemon();
    return false;
  }
};

TEST_P(ExhaustedHeapTest, IsAnAnswerAnErrorOrAnEndWithLastWords) {
  for (const CallCase& c : repeatableCalls()) {
    SCOPED_TRACE(c.call);
    bool isMet = true;
    for (long successes = 0; isMet; successes += GetParam().step) {
      SCOPED_TRACE(successes);
      if (*c.before != '\0') static_cast<void>(client().answer(c.before));
      const std::string answer = answerAfter(successes, GetParam().failures, c.call, isMet);
      if (goesOn(answer)) {
        EXPECT_TRUE(answer == c.answer || (isMet && isOfExhaustedMemory(answer))) << answer;
        if (goesOn(client().answer("commit(0)"))) expectTold();
      }
      ASSERT_FALSE(HasFailure());
    }
  }
}

TEST_P(ExhaustedHeapTest, StartsATransactionOrSaysWhyNot) {
  bool isMet = true;
  for (long successes = 0; isMet; successes += GetParam().step) {
    SCOPED_TRACE(successes);
    const std::string id = answerAfter(successes, GetParam().failures, "start()", isMet);
    if (goesOn(id) && id != "Start failed because of an \"out of memory\" condition") {
      EXPECT_EQ(client().answer("end(" + id + ")"), "()");
    }
    ASSERT_FALSE(HasFailure());
  }
}

TEST_P(ExhaustedHeapTest, EndsByDieInAnyCase) {
  bool isMet = true;
  for (long successes = 0; isMet; successes += GetParam().step) {
    SCOPED_TRACE(successes);
    const std::string answer = answerAfter(successes, GetParam().failures, "die()", isMet);
    const Ending ending = daemon().waitForEnd();
    EXPECT_EQ(ending.status, 1);
    EXPECT_TRUE(ending.err.ends_with(LAST_WORDS) || (ending.err.empty() && answer == "()"))
        << answer << ending.err;
    startDaemon();
    ASSERT_FALSE(HasFailure());
  }
}

// A single allocation, or all until the process has ended: what is waited for is there in the end.
INSTANTIATE_TEST_SUITE_P(ForSoManyAllocations, ExhaustedHeapTest,
                         testing::Values(Failures{1, 1}, Failures{50, 3}));

// The start: the daemon serves, or ends with a text. The bus library waits 25 seconds for an answer
// that it has come by but had no memory to take, so the clock is fast.
class ExhaustedStartHeapTest : public testing::TestWithParam<Failures> {
 protected:
  void SetUp() override {
    if (isWatched()) GTEST_SKIP() << "the heap is that of the tool that looks on the daemon";
#ifdef WITH_COVERAGE
    GTEST_SKIP() << "what writes down the coverage at the end does not bear a failure";
#endif
  }

  // Starts the daemon; after so many allocations from main() on, others fail. Returns whether it
  // got that far: a daemon that serves all the same has done without.
  bool isMetAfter(long successes) {
    plan_.begin(successes, GetParam().failures);
    Daemon daemon({.text = "gain rw { rangeValid { 0..9 } default { 5 } }\n",
                   .busAddress = bus_.address(),
                   .environment = {{"ALLOCATION_FAILURE_FILE", plan_.file()}},
                   .preload = HEAP_FAILURE_LIBRARY ":" FAST_CLOCK_LIBRARY});
    const bool serves = client_.waitForService(daemon.process()) &&
                        !client_.answer("start()").starts_with("org.freedesktop.DBus.Error.");
    const bool isMet = plan_.end();
    if (serves) {
      EXPECT_EQ(client_.answer("single_reset('gain')"), "()");
      EXPECT_EQ(client_.answer("single_get('gain')"), "'5'");
      EXPECT_EQ(client_.answer("die()"), "()");
    }
    const Ending ending = daemon.waitForEnd();
    EXPECT_EQ(ending.status, 1);
    if (!serves) {
      ++ends_;
      expectReason(ending.err);
    }
    return isMet;
  }
  [[nodiscard]] int ends() const { return ends_; }

 private:
  static void expectReason(const std::string& errors) {
    const char* const reasons[] = {
        "Error starting the service: out of memory\n",
        LAST_WORDS,
        "Couldn\u2019t initialize server methods (Unknown (OOM ?))\n",
        "Couldn\u2019t connect to session bus (Not enough memory)\n",
        "Couldn\u2019t connect to session bus (Not enough memory available)\n",
        // The copy of the bus's address is missing, or the answer that came.
        "Couldn\u2019t connect to session bus (Unable to autolaunch a dbus-daemon without a "
        "$DISPLAY for X11)\n",
        "RequestName RPC failed (Did not receive a reply. Possible causes include: the remote "
        "application did not send a reply, the message bus security policy blocked the reply, the "
        "reply timeout expired, or the network connection was broken.)\n",
    };
    const auto isAtEnd = [&errors](const char* reason) { return errors.ends_with(reason); };
    EXPECT_TRUE(std::any_of(std::begin(reasons), std::end(reasons), isAtEnd)) << errors;
  }

  int ends_ = 0;
  FailurePlan plan_;
  PrivateBus bus_;
  Client client_{bus_.address()};
};

TEST_P(ExhaustedStartHeapTest, EndsWithATextAndStatus1OrServes) {
  bool isMet = true;
  for (long successes = 0; isMet; successes += GetParam().step) {
    SCOPED_TRACE(successes);
    isMet = isMetAfter(successes);
    ASSERT_FALSE(HasFailure());
  }
  EXPECT_GT(ends(), 100);
}

INSTANTIATE_TEST_SUITE_P(ForSoManyAllocations, ExhaustedStartHeapTest,
                         testing::Values(Failures{1, 1}, Failures{50, 3}));

}  // namespace
