// Exhausted memory: whichever allocation of a method fails, its client gets an answer, and the
// service goes on.
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <map>

#include "tests/harness/allocation_failure.h"
#include "tests/harness/service_test.h"
#include "tests/harness/temp_dir.h"

namespace {

constexpr const char* DEFINITIONS = R"(
witness rw { rangeValid { 0..9 } default { 7 } }
mode    rw { rangeValid { "1080i/50", "720p/50" } default { "1080i/50" } }
level   rw { rangeValid { 0..(vidStd::mode::spal - 1) } default { 5 } }
channel index { rangeValid { 1..2 } }
note    rw { valueChange { "on" -> "a text for which no object has room in itself" } }
figure  rw { valueChange { "on" -> "0 is what this text begins with, but it is none" } }
seen    rw { rangeValid (figure == 5) { 5 } rangeValid (figure != 5) { 6 } }
gain    rw { index { channel } rangeValid { 0..(level), "no gain at all, for the longest time" }
             default { 1 } }
)";

class ExhaustedMemoryTest : public testing::TestWithParam<long> {
 protected:
  void SetUp() override {
    const int file = open(file_.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    ASSERT_EQ(ftruncate(file, sizeof(AllocationFailure)), 0);
    void* memory =
        mmap(nullptr, sizeof(AllocationFailure), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    close(file);
    ASSERT_NE(memory, MAP_FAILED);
    plan_ = static_cast<AllocationFailure*>(memory);
    daemon_ = std::make_unique<Daemon>(
        Daemon::Options{.text = DEFINITIONS,
                        .busAddress = bus_.address(),
                        .environment = {{"ALLOCATION_FAILURE_FILE", file_}},
                        .preload = ALLOCATION_FAILURE_LIBRARY});
    ASSERT_TRUE(client_.waitForService(daemon_->process()));
    EXPECT_EQ(client_.answer("start()"), "0");
    EXPECT_EQ(client_.answer("single_set('witness', '7')"), "()");
    EXPECT_EQ(client_.answer("single_reset_bulk(['mode', 'level', 'gain[1]', 'gain[2]'])"), "()");
  }
  void TearDown() override {
    EXPECT_EQ(client_.answer("die()"), "()");
    const Ending ending = daemon_->waitForEnd();
    EXPECT_EQ(ending.status, 1);
    EXPECT_EQ(ending.err, "");
    munmap(plan_, sizeof(AllocationFailure));
  }

  // What the call answers when, after so many allocations, others fail. `isMet` tells whether it
  // got that far.
  std::string answerAfter(long successes, const std::string& call, bool& isMet) {
    plan_->successes = successes;
    plan_->failures = GetParam();
    std::string answer = client_.answer(call);
    isMet = plan_->failures.exchange(0) < GetParam();
    return answer;
  }

  // Every value is the last that a signal has told of it.
  void expectTold() {
    for (const std::vector<std::string>& changes : client_.newSignals()) {
      EXPECT_TRUE(std::is_sorted(changes.begin(), changes.end()));
      for (const std::string& change : changes) {
        const size_t sign = change.find('=');
        told_[change.substr(0, sign)] = change.substr(sign + 1);
      }
    }
    for (const auto& [name, value] : told_) {
      EXPECT_EQ(client_.answer("single_get('" + name + "')"), "'" + value + "'") << name;
    }
  }

  Client& client() { return client_; }
  Daemon& daemon() { return *daemon_; }

 private:
  std::map<std::string, std::string> told_;
  TempDir directory_;
  std::string file_ = directory_.path() + "/plan";
  AllocationFailure* plan_ = nullptr;
  PrivateBus bus_;
  Client client_{bus_.address()};
  std::unique_ptr<Daemon> daemon_;
};

struct CallCase {
  const char* before;  // makes the situation for the call; empty: nothing
  const char* call;
  const char* answer;
};

constexpr CallCase CALLS[] = {
    {"", "get(0, 'gain[1]')", "'1'"},
    {"", "get_bulk(0, 3, ['gain[1]', 'gain[2]', 'mode'])", "['1', '1', '1080i/50']"},
    {"", "is_valid(0, 'gain[1]', '3')", "true"},
    {"", "check_set(0, 'gain[1]', '1')", "true"},
    {"", "set(0, 'gain[1]', '1')", "()"},
    {"", "get(99, 'gain[1]')", "Get failed because of invalid transaction id"},
    {"", "set_status(0, 'gain[2]', '1')", "()"},
    {"", "set_bulk(0, ['gain[1]', 'gain[2]', 'level'], ['1', '1', '5'])", "()"},
    {"", "set_status_bulk(0, ['gain[1]', 'gain[2]', 'level'], ['1', '1', '5'])", "()"},
    {"", "reset(0, 'gain[1]')", "()"},
    {"", "reset_status(0, 'gain[2]')", "()"},
    {"", "reset_bulk(0, ['gain[1]', 'gain[2]', 'level'])", "()"},
    {"", "reset_status_bulk(0, ['gain[1]', 'gain[2]', 'level'])", "()"},
    {"set_bulk(0, ['mode', 'gain[2]'], ['720p/50', '4'])", "commit(0)", "()"},
    {"reset_bulk(0, ['mode', 'level', 'gain[1]', 'gain[2]'])", "commit(0)", "()"},
    {"", "single_get('gain[1]')", "'1'"},
    {"", "single_get_bulk(2, ['gain[1]', 'gain[2]'])", "['1', '1']"},
    {"", "single_is_valid('mode', 'sepia')", "false"},
    {"", "single_check_set('gain[1]', '1')", "true"},
    {"", "single_set('mode', '720p/50')", "()"},
    {"", "single_set_status('mode', '1080i/50')", "()"},
    {"", "single_set('gain[3]', '1')", "Commit failed because parameter index is invalid"},
    {"", "single_set_bulk(['level', 'gain[1]'], ['2000', '4000'])", "()"},
    {"", "single_set_status_bulk(['level', 'gain[1]'], ['5', '1'])", "()"},
    {"single_set('note', 'off')", "single_set('note', 'on')", "()"},
    {"", "single_reset('gain[1]')", "()"},
    {"", "single_reset_status('gain[1]')", "()"},
    {"", "single_reset_bulk(['level', 'gain[1]'])", "()"},
    {"", "single_reset_status_bulk(['level', 'gain[1]'])", "()"},
    {"", "get_deps('gain[1]')", "['level', 'mode']"},
    {"", "get_range(0, 'gain[1]')", "(['no gain at all, for the longest time'], [(0, 5)])"},
    {"", "get_range(0, 'gain[3]')", "Get range failed because of invalid bounds (1)"},
    {"", "get_range_bulk(0, ['gain[1]', 'level'])",
     "([('gain[1]', 'no gain at all, for the longest time')], "
     "[('gain[1]', 0, 5), ('level', 0, 1919)])"},
    {"", "get_parm_idx(0, 'gain')", "['channel']"},
    {"", "get_idx_range(0, 'channel')", "([], [(1, 2)])"},
    {"", "end(99)", "End failed because of invalid transaction id"},
};

bool isOfExhaustedMemory(const std::string& answer) {
  return answer.ends_with(" failed because of internal error") ||
         answer == "Get deps failed because of unknown error";
}

TEST_P(ExhaustedMemoryTest, IsAnErrorOfTheMethod) {
  for (const CallCase& c : CALLS) {
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
