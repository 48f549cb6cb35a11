#include "tests/harness/exhausted_test.h"

#include <algorithm>

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

}  // namespace

std::span<const CallCase> repeatableCalls() { return CALLS; }

bool isOfExhaustedMemory(const std::string& answer) {
  return answer.ends_with(" failed because of internal error") ||
         answer == "Get deps failed because of unknown error";
}

void ExhaustedTest::startDaemon() {
  told_.clear();
  daemon_ = std::make_unique<Daemon>(
      Daemon::Options{.text = DEFINITIONS,
                      .busAddress = bus_.address(),
                      .environment = {{"ALLOCATION_FAILURE_FILE", plan_.file()}},
                      .preload = library_});
  ASSERT_TRUE(client_.waitForService(daemon_->process()));
  ASSERT_EQ(client_.answer("start()"), "0");
  ASSERT_EQ(client_.answer("single_set('witness', '7')"), "()");
  ASSERT_EQ(client_.answer("single_reset_bulk(['mode', 'level', 'gain[1]', 'gain[2]'])"), "()");
}

std::string ExhaustedTest::answerAfter(long successes, long failures, const std::string& call,
                                       bool& isMet) {
  // What the service does behind the answer to the call before is done then.
  EXPECT_TRUE(client_.answer("single_get('seen')").starts_with('\''));
  plan_.begin(successes, failures);
  std::string answer = client_.answer(call);
  isMet = plan_.end();
  return answer;
}

void ExhaustedTest::expectTold() {
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

void ExhaustedTest::expectOrderlyEnd() {
  EXPECT_EQ(client_.answer("die()"), "()");
  const Ending ending = daemon_->waitForEnd();
  EXPECT_EQ(ending.status, 1);
  EXPECT_EQ(ending.err, "");
}
