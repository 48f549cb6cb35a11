// Exhausted memory: whichever allocation of a method fails, its client gets an answer, and the
// service goes on.
#include "tests/harness/exhausted_test.h"

namespace {

class ExhaustedMemoryTest : public ExhaustedTest, public testing::WithParamInterface<long> {
 protected:
  ExhaustedMemoryTest() : ExhaustedTest(ALLOCATION_FAILURE_LIBRARY) {}
  void SetUp() override { startDaemon(); }
  void TearDown() override { expectOrderlyEnd(); }
  std::string answerAfter(long successes, const std::string& call, bool& isMet) {
    return ExhaustedTest::answerAfter(successes, GetParam(), call, isMet);
  }
};

TEST_P(ExhaustedMemoryTest, IsAnErrorOfTheMethod) {
  for (const CallCase& c : repeatableCalls()) {
    SCOPED_TRACE(c.call);
    bool isMet = true;
    for (long successes = 0; isMet; ++successes) {
      if (*c.before != '\0') static_cast<void>(client().answer(c.before));
      const std::string answer = answerAfter(successes, c.call, isMet);
      // What can do without the memory succeeds.
      EXPECT_TRUE(answer == c.answer || (isMet && isOfExhaustedMemory(answer)))
          << answer << " after " << successes;
      ASSERT_TRUE(daemon().process().running());
      ASSERT_EQ(client().answer("single_get('witness')"), "'7'");
      // What is half staged does not stay, and what is committed has been told.
      ASSERT_EQ(client().answer("commit(0)"), "()") << "after " << successes;
      expectTold();
    }
  }
}

// A long text that begins with a digit is copied to find out whether it is a number.
TEST_P(ExhaustedMemoryTest, LeavesNoTextWithTheNumberOfAnother) {
  bool isMet = true;
  for (long successes = 0; isMet; ++successes) {
    SCOPED_TRACE(successes);
    ASSERT_EQ(client().answer("single_set('figure', '5')"), "()");
    ASSERT_EQ(client().answer("single_get('seen')"), "'5'");
    static_cast<void>(answerAfter(successes, "single_set('figure', 'on')", isMet));
    EXPECT_EQ(client().answer("single_set('figure', 'on')"), "()");
    EXPECT_EQ(client().answer("single_get('seen')"), "'6'");
    expectTold();
  }
}

TEST_P(ExhaustedMemoryTest, HasAMessageOfItsOwnAtTheStartOfATransaction) {
  bool isMet = false;
  EXPECT_EQ(answerAfter(0, "start()", isMet),
            "Start failed because of an \"out of memory\" condition");
  EXPECT_TRUE(isMet);
}

// A single allocation, or all until the call ends.
INSTANTIATE_TEST_SUITE_P(ForSoManyAllocations, ExhaustedMemoryTest, testing::Values(1, 1000000));

}  // namespace
