// The system log: one that does not read, or is not there, keeps nobody waiting, and what it loses
// is told.
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <charconv>
#include <cstring>
#include <string_view>

#include "tests/harness/service_test.h"

namespace {

constexpr const char* DEFINITIONS =
    "channel index { rangeValid { 1..2 } }\n"
    "gain rw { index { channel } }\n";

// A call that is refused, and what the log is told of it.
constexpr const char* CALL = "single_set('gain[9]', '1')";
constexpr const char* ANSWER = "Commit failed because parameter index is invalid";
const std::vector<std::string> LINES = {
    "set: ERROR \"gain\": Invalid index value[\"channel\"=\"9\"]", "Var list begin", "Var list end",
    "commit: ERROR \"gain[9]\"=\"1\": ret=-3"};

class SystemLogTest : public testing::Test {
 protected:
  void SetUp() override {
    startLog();
    daemon_ = std::make_unique<Daemon>(Daemon::Options{
        .text = DEFINITIONS, .busAddress = bus_.address(), .environment = {{"LOG_SOCKET", path_}}});
    ASSERT_TRUE(client_.waitForService(daemon_->process()));
  }
  void TearDown() override {
    EXPECT_EQ(client_.answer("die()"), "()");
    const Ending ending = daemon_->waitForEnd();
    EXPECT_EQ(ending.status, 1);
    EXPECT_EQ(ending.err, "");
    EXPECT_EQ(daemon_->newLogLines(), std::vector<std::string>());
    stopLog();
  }

  // A log that reads only what these tests ask it for.
  void startLog() {
    log_ = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    sockaddr_un address = {.sun_family = AF_UNIX, .sun_path = {}};
    memcpy(&address.sun_path, path_.c_str(), path_.size() + 1);
    ASSERT_EQ(bind(log_, reinterpret_cast<sockaddr*>(&address), sizeof(address)), 0);
  }
  void stopLog() {
    close(log_);
    unlink(path_.c_str());
  }

  // The next entry of the log, for which it waits, without the header before the line.
  std::string nextLine() const {
    if (!waitUntilReadable(log_)) return "no line";
    std::array<char, 1000> buffer = {};
    const ssize_t size = recv(log_, buffer.data(), buffer.size(), MSG_DONTWAIT);
    const std::string_view entry(buffer.data(), size < 0 ? 0 : static_cast<size_t>(size));
    const std::string_view program = " ostrel: ";
    const size_t end = entry.find(program);
    if (!entry.starts_with("<11>") || end == std::string_view::npos) return std::string(entry);
    return std::string(entry.substr(end + program.size()));
  }

  // The next entries, as many as the log is told of one refused call.
  std::vector<std::string> nextLines() const {
    std::vector<std::string> lines;
    for (size_t i = 0; i < LINES.size(); ++i) lines.push_back(nextLine());
    return lines;
  }

  // Reads on to the entry that tells how many lines are lost, and returns their number. `taken` is
  // that of the entries before it.
  size_t nextLost(size_t& taken) const {
    const std::string_view begin = "log: ERROR: lines lost: ";
    std::string line = nextLine();
    for (taken = 0; !line.starts_with(begin); ++taken, line = nextLine()) {
      EXPECT_EQ(line, LINES[taken % LINES.size()]);
      if (HasFailure()) return 0;
    }
    size_t count = 0;
    std::from_chars(line.data() + begin.size(), line.data() + line.size(), count);
    return count;
  }

  Client& client() { return client_; }
  PrivateBus& bus() { return bus_; }

 private:
  TempDir directory_;
  std::string path_ = directory_.path() + "/log";
  int log_ = -1;
  PrivateBus bus_;
  Client client_{bus_.address()};
  std::unique_ptr<Daemon> daemon_;
};

TEST_F(SystemLogTest, OneThatDoesNotReadKeepsNobodyWaiting) {
  constexpr size_t CALLS = 5000;
  Client other(bus().address());
  for (size_t i = 0; i < CALLS; ++i) client().send(CALL);
  EXPECT_EQ(other.answer("single_get('gain[1]')"), "''");
  EXPECT_EQ(client().collectAnswers(), std::vector<std::string>(CALLS, ANSWER));
  // The log reads again, and nobody calls any more.
  size_t taken = 0;
  const size_t lost = nextLost(taken);
  EXPECT_GT(taken, 0U);
  EXPECT_GT(lost, 0U);
  EXPECT_EQ(taken + lost, CALLS * LINES.size());
  EXPECT_EQ(client().answer(CALL), ANSWER);
  EXPECT_EQ(nextLines(), LINES);
}

TEST_F(SystemLogTest, OneThatIsStartedAnewIsToldWhatWasLost) {
  EXPECT_EQ(client().answer(CALL), ANSWER);
  EXPECT_EQ(nextLines(), LINES);
  stopLog();
  EXPECT_EQ(client().answer(CALL), ANSWER);
  EXPECT_EQ(client().answer(CALL), ANSWER);
  startLog();
  EXPECT_EQ(nextLine(), "log: ERROR: lines lost: 8");
}

}  // namespace
