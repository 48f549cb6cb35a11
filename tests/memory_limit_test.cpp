// A limit of memory, as by ulimit -v: wherever it is, a call gets its answer or an error, and the
// service goes on.
#include <sys/resource.h>
#include <unistd.h>

#include <map>

#include "tests/harness/service_test.h"

namespace {

constexpr size_t MEBIBYTE = size_t{1} << 20U;

// Of a list of `count` texts.
template <typename TextOf>
std::string listOf(int count, const TextOf& textOf) {
  std::string list = "[";
  for (int i = 0; i < count; ++i) list += (i > 0 ? ", '" : "'") + textOf(i) + "'";
  return list + "]";
}

class MemoryLimitTest : public ServiceTest {
 protected:
  MemoryLimitTest() : ServiceTest({.limits = {}}) {}
  void SetUp() override {
    if (isWatched()) GTEST_SKIP() << "what looks on the daemon needs the memory itself";
  }

  // The daemon gets no more than `bytes` beyond what it has.
  void limitTo(size_t bytes) { limitTo(daemon(), bytes); }
  static void limitTo(Daemon& daemon, size_t bytes) {
    setLimit(daemon, memoryOf(daemon.process().pid(), "VmSize:") * 1024 + bytes);
  }
  void liftLimit() { setLimit(daemon(), RLIM_INFINITY); }

  // What the call answers with no more than `bytes` beyond what the daemon has.
  std::string answerWithin(size_t bytes, const std::string& call) {
    limitTo(bytes);
    std::string answer = client().answer(call);
    liftLimit();
    return answer;
  }

  // Every value is the last that a signal has told of it.
  void expectTold() {
    for (const std::vector<std::string>& changes : client().newSignals()) {
      for (const std::string& change : changes) {
        const size_t sign = change.find('=');
        told_[change.substr(0, sign)] = change.substr(sign + 1);
      }
    }
    for (const auto& [name, value] : told_) {
      EXPECT_TRUE(client().answer("single_get('" + name + "')") == "'" + value + "'") << name;
    }
  }

 private:
  static void setLimit(Daemon& daemon, rlim_t bytes) {
    const rlimit limit = {bytes, RLIM_INFINITY};
    ASSERT_EQ(prlimit(daemon.process().pid(), RLIMIT_AS, &limit, nullptr), 0);
  }

  std::map<std::string, std::string> told_;
};

constexpr int COUNT = 30;

std::string nameOf(int i) { return "p" + std::to_string(i); }

// Parameters with defaults of a mebibyte each, less their names.
std::string largeDefaults() {
  std::string text;
  for (int i = 0; i < COUNT; ++i) {
    text += nameOf(i) + " rw { default { \"" + std::to_string(100 + i) +
            std::string(MEBIBYTE - 100, 'x') + "\" } }\n";
  }
  return text;
}

TEST_F(MemoryLimitTest, KeepsNoValueWhoseSignalFindsNoRoom) {
  serve(largeDefaults());
  const std::string names = listOf(COUNT, nameOf);
  const std::string nothing = listOf(COUNT, [](int) { return std::string(); });
  const std::string clear = "single_set_bulk(" + names + ", " + nothing + ")";
  const std::string reset = "single_reset_bulk(" + names + ")";
  int refusals = 0;
  std::string answer;
  for (size_t mebibytes = 0; answer != "()"; mebibytes += 10) {
    SCOPED_TRACE(mebibytes);
    ASSERT_EQ(client().answer(clear), "()");
    answer = answerWithin(mebibytes * MEBIBYTE, reset);
    if (answer != "()") {
      ++refusals;
      ASSERT_EQ(answer, "Reset failed because of internal error");
    }
    expectTold();
    ASSERT_FALSE(HasFailure());
  }
  EXPECT_GT(refusals, 10);
  EXPECT_EQ(client().answer("single_get('p29')").size(), MEBIBYTE - 95);
}

TEST_F(MemoryLimitTest, RefusesAReplyThatFindsNoRoom) {
  serve(largeDefaults() +
        "place index { rangeValid { 1..20000 } }\n"
        "wide rw { index { place } rangeValid { 0..9, 11..19, \"a text\" } }\n"
        "list rw { rangeValid { \"" +
        std::string(MEBIBYTE - 10, 'y') + "\" } }\nnote rw { }\n");
  const std::string names = listOf(COUNT, nameOf);
  ASSERT_EQ(client().answer("start()"), "0");
  ASSERT_EQ(client().answer("single_reset_bulk(" + names + ")"), "()");
  ASSERT_EQ(client().answer("single_set('note', '1')"), "()");
  const auto wide = [](int i) { return "wide[" + std::to_string(i + 1) + "]"; };
  const std::string calls[] = {
      "single_get('p1')",
      "single_get_bulk(30, " + names + ")",
      "get_range(0, 'list')",
      "get_range_bulk(0, " + listOf(20000, wide) + ")",
  };
  for (const std::string& call : calls) {
    SCOPED_TRACE(call.substr(0, 30));
    const std::string complete = client().answer(call);
    int refusals = 0;
    for (size_t mebibytes = 0;; ++mebibytes) {
      const std::string answer = answerWithin(mebibytes * MEBIBYTE, call);
      ASSERT_EQ(client().answer("single_get('note')"), "'1'") << mebibytes;
      if (answer == complete) break;
      ASSERT_TRUE(answer.ends_with(" failed because of internal error")) << mebibytes;
      ++refusals;
    }
    EXPECT_GT(refusals, 0);
  }
}

// Small pieces take the last of the memory, as none of them is too much.
TEST_F(MemoryLimitTest, LeavesRoomForAnswersWhereTransactionsTakeAll) {
  constexpr int REFUSALS = 20;
  for (size_t kibibytes = 700; kibibytes < 1600; kibibytes += 60) {
    SCOPED_TRACE(kibibytes);
    serve("a rw { }\nb rw { }\n");
    limitTo(kibibytes * 1024);
    int refusals = 0;
    for (int i = 0; refusals < REFUSALS; ++i) {
      ASSERT_LT(i, 100000);
      const std::string id = client().answer("start()");
      if (id != std::to_string(i - refusals)) {
        ASSERT_EQ(id, "Start failed because of an \"out of memory\" condition");
        ++refusals;
        continue;
      }
      const std::string value(static_cast<size_t>(10 + i % 200), 'v');
      const std::string answer = client().answer(
          std::string("set(").append(id).append(", 'a', '").append(value).append("')"));
      ASSERT_TRUE(answer == "()" || answer == "Set failed because of internal error") << answer;
    }
    for (int i = 0; i < REFUSALS; ++i) {
      ASSERT_EQ(client().answer("get(0, 'a')"), "'" + std::string(10, 'v') + "'");
      ASSERT_EQ(client().answer("single_set('b', '1')"), "Set failed because of internal error");
    }
    ASSERT_EQ(client().answer("commit(0)"), "()");
    liftLimit();
    EXPECT_EQ(client().answer("single_set('b', '1')"), "()");
    expectOrderlyEnd();
  }
}

constexpr const char* LAST_WORDS =
    "Transaction server: ERROR: Out of memory (the service cannot go on)\n";

// A call for which the bus library finds no memory keeps all others waiting, as it is not read.
TEST_F(MemoryLimitTest, WaitsForRoomForACall) {
  serve("note rw { }\n");
  ASSERT_EQ(client().answer("start()"), "0");
  limitTo(MEBIBYTE);
  client().send("set(0, 'note', '" + std::string(8 * MEBIBYTE, 'v') + "')");
  client().send("single_set('note', '1')");
  usleep(500000);
  liftLimit();
  EXPECT_EQ(client().collectAnswers(),
            (std::vector<std::string>{"Set failed because parameter value is invalid", "()"}));
  EXPECT_EQ(client().answer("single_get('note')"), "'1'");
}

// What has come before it is served, which may give the memory back. Each of these calls takes some
// milliseconds, so that most of them still wait when the large one has come.
TEST_F(MemoryLimitTest, ServesWhatWaitsWhereACallFindsNoRoom) {
  constexpr int COUNT_BEFORE = 100;
  serve("text rw { }\npart rw { }\nlong rw { ctrlValid (text $ part) }\n");
  ASSERT_EQ(client().answer("start()"), "0");
  const std::string value(MEBIBYTE, 'x');
  ASSERT_EQ(client().answer("single_set('text', '" + value + "')"), "()");
  limitTo(4 * MEBIBYTE);
  pause();
  // All by one client: the bus keeps the order only of what one has sent.
  for (int i = 0; i < COUNT_BEFORE; ++i) client().send("single_set('part', 'xy')");
  client().send("set(0, 'text', '" + std::string(8 * MEBIBYTE, 'x') + "')");
  waitForBus(client());
  resume();
  EXPECT_EQ(client().collectAnswers(COUNT_BEFORE), std::vector<std::string>(COUNT_BEFORE, "()"));
  liftLimit();
  EXPECT_EQ(client().collectAnswers(),
            std::vector<std::string>{"Set failed because parameter value is invalid"});
  static_cast<void>(client().newSignals());
}

TEST_F(MemoryLimitTest, EndsWhereACallFindsNoRoomForTenSeconds) {
  Daemon daemon(
      {.text = "note rw { }\n", .busAddress = bus().address(), .preload = FAST_CLOCK_LIBRARY});
  ASSERT_TRUE(client().waitForService(daemon.process()));
  ASSERT_EQ(client().answer("start()"), "0");
  limitTo(daemon, MEBIBYTE);
  const std::string value(8 * MEBIBYTE, 'v');
  EXPECT_TRUE(client().answer("set(0, 'note', '" + value + "')").find("NoReply") !=
              std::string::npos);
  const Ending ending = daemon.waitForEnd();
  EXPECT_EQ(ending.status, 1);
  EXPECT_EQ(ending.err, LAST_WORDS);
  EXPECT_EQ(daemon.newLogLines(),
            (std::vector<std::string>{"service: ERROR: out of memory, ended"}));
}

}  // namespace
