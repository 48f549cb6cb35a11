#include "base/log_socket.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <regex>
#include <string>
#include <utility>
#include <vector>

namespace {

// With which errno the next call fails; 0: it goes to the system.
int nextSocketError = 0;
int nextSendError = 0;

ssize_t failOrCall(int& error, long number, long a, long b, long c) {
  if (error == 0) return syscall(number, a, b, c);
  errno = std::exchange(error, 0);
  return -1;
}

}  // namespace

// In the place of the C library's: the system cannot be made to fail in each of its ways.
extern "C" int socket(int domain, int type, int protocol) noexcept {
  return static_cast<int>(failOrCall(nextSocketError, SYS_socket, domain, type, protocol));
}
// NOLINTNEXTLINE(readability-inconsistent-declaration-parameter-name)
extern "C" ssize_t sendmsg(int descriptor, const msghdr* message, int flags) {
  return failOrCall(nextSendError, SYS_sendmsg, descriptor, reinterpret_cast<long>(message), flags);
}

namespace {

std::string newDirectory() {
  std::string name = std::filesystem::temp_directory_path() / "log-socket-XXXXXX";
  return mkdtemp(name.data()) == nullptr ? "" : name;
}

class LogSocketTest : public testing::Test {
 protected:
  ~LogSocketTest() override {
    stopLog();
    std::filesystem::remove_all(directory_);
  }
  // A log that reads nothing by itself, in place of the one before.
  void startLog(int type = SOCK_DGRAM) {
    stopLog();
    log_ = socket(AF_UNIX, type | SOCK_CLOEXEC, 0);
    sockaddr_un address = {.sun_family = AF_UNIX, .sun_path = {}};
    memcpy(&address.sun_path, path_.c_str(), path_.size() + 1);
    ASSERT_EQ(bind(log_, reinterpret_cast<sockaddr*>(&address), sizeof(address)), 0);
    if (type == SOCK_STREAM) {
      ASSERT_EQ(listen(log_, 1), 0);
    }
  }
  void stopLog() {
    if (log_ >= 0) close(log_);
    log_ = -1;
    unlink(path_.c_str());
  }
  // What the log, or the connection to it, has not read yet.
  static std::vector<std::string> entriesOf(int descriptor) {
    std::vector<std::string> entries;
    std::vector<char> buffer(1 << 20);
    ssize_t size = 0;
    while ((size = recv(descriptor, buffer.data(), buffer.size(), MSG_DONTWAIT)) > 0) {
      entries.emplace_back(buffer.data(), static_cast<size_t>(size));
    }
    return entries;
  }
  std::vector<std::string> entries() const { return entriesOf(log_); }
  [[nodiscard]] int accepted() const { return accept(log_, nullptr, nullptr); }
  [[nodiscard]] const char* path() const { return path_.c_str(); }

 private:
  std::string directory_ = newDirectory();
  std::string path_ = directory_ + "/log";
  int log_ = -1;
};

// The entry's line, where its header is as it has to be; otherwise the whole entry.
std::string lineOf(const std::string& entry) {
  const std::regex header(
      "<11>(Jan|Feb|Mar|Apr|May|Jun|Jul|Aug|Sep|Oct|Nov|Dec) [ 123][0-9] "
      "[0-9]{2}:[0-9]{2}:[0-9]{2} log_socket_test: ");
  std::smatch found;
  const bool isAtStart =
      std::regex_search(entry, found, header, std::regex_constants::match_continuous);
  return isAtStart ? found.suffix().str() : entry;
}

TEST_F(LogSocketTest, SendsEachLineAsOneEntry) {
  startLog();
  LogSocket socket(path());
  const std::string lines[] = {"", "set: ERROR \"gain\"", "100 %s %n\n two", "\xE4\x01",
                               std::string(100000, 'x')};
  for (const std::string& line : lines) {
    SCOPED_TRACE(line.substr(0, 40));
    EXPECT_EQ(socket.send(line.c_str()), 0);
    const std::vector<std::string> got = entries();
    ASSERT_EQ(got.size(), 1U);
    EXPECT_EQ(lineOf(got[0]), line);
  }
}

TEST_F(LogSocketTest, EndsEachEntryOfAStreamWithANul) {
  startLog(SOCK_STREAM);
  LogSocket socket(path());
  EXPECT_EQ(socket.send("one"), 0);
  EXPECT_EQ(socket.send("two"), 0);
  const int connection = accepted();
  const std::vector<std::string> got = entriesOf(connection);
  close(connection);
  ASSERT_EQ(got.size(), 1U);
  const size_t end = got[0].find('\0');
  ASSERT_NE(end, std::string::npos);
  EXPECT_EQ(lineOf(got[0].substr(0, end)), "one");
  EXPECT_EQ(lineOf(got[0].substr(end + 1)), std::string("two\0", 4));
}

TEST_F(LogSocketTest, LosesWhatAFullLogDoesNotTake) {
  for (const int type : {SOCK_DGRAM, SOCK_STREAM}) {
    SCOPED_TRACE(type);
    startLog(type);
    LogSocket socket(path());
    size_t sent = 0;
    while (socket.send("line") == 0) ++sent;
    EXPECT_GT(sent, 0U);
    EXPECT_EQ(socket.send("line"), LOG_LOST);
    if (type == SOCK_STREAM) continue;
    EXPECT_EQ(entries().size(), sent);
    EXPECT_EQ(socket.send("after"), 0);
  }
}

TEST_F(LogSocketTest, BeginsAStreamAnewWhereAnEntryWasCut) {
  startLog(SOCK_STREAM);
  LogSocket socket(path());
  EXPECT_EQ(socket.send("first"), 0);
  EXPECT_EQ(socket.send(std::string(5000000, 'x').c_str()), LOG_LOST);
  close(accepted());
  EXPECT_EQ(socket.send("second"), 0);
  const int connection = accepted();
  const std::vector<std::string> got = entriesOf(connection);
  close(connection);
  ASSERT_EQ(got.size(), 1U);
  EXPECT_EQ(lineOf(got[0]), std::string("second\0", 7));
}

TEST_F(LogSocketTest, LosesAnEntryThatIsTooLong) {
  startLog();
  LogSocket socket(path());
  EXPECT_EQ(socket.send(std::string(5000000, 'x').c_str()), LOG_LOST);
  EXPECT_EQ(socket.send("after"), 0);
  EXPECT_EQ(entries().size(), 1U);
}

TEST_F(LogSocketTest, FindsALogThatWasStartedAnew) {
  for (const int type : {SOCK_DGRAM, SOCK_STREAM}) {
    SCOPED_TRACE(type);
    startLog(type);
    LogSocket socket(path());
    EXPECT_EQ(socket.send("one"), 0);
    stopLog();
    EXPECT_EQ(socket.send("two"), LOG_LOST);  // there has been one
    startLog(SOCK_DGRAM);
    EXPECT_EQ(socket.send("three"), 0);
    const std::vector<std::string> got = entries();
    ASSERT_EQ(got.size(), 1U);
    EXPECT_EQ(lineOf(got[0]), "three");
  }
}

TEST_F(LogSocketTest, TellsThatThereHasBeenNoLog) {
  LogSocket socket(path());
  EXPECT_EQ(socket.send("one"), LOG_ABSENT);
  startLog();
  EXPECT_EQ(socket.send("two"), 0);
}

TEST_F(LogSocketTest, TellsARefusalFromABrokenConnection) {
  struct {
    int error;  // of the sending
    int result;
  } const cases[] = {
      {EAGAIN, LOG_LOST}, {EMSGSIZE, LOG_LOST}, {ENOBUFS, LOG_LOST},
      {ENOMEM, LOG_LOST}, {ECONNREFUSED, 0},  // the log is there again
      {EPIPE, 0},         {ENOTCONN, 0},
  };
  startLog();
  for (const auto& c : cases) {
    SCOPED_TRACE(strerror(c.error));
    LogSocket socket(path());
    EXPECT_EQ(socket.send("one"), 0);
    EXPECT_EQ(entries().size(), 1U);
    nextSendError = c.error;
    EXPECT_EQ(socket.send("two"), c.result);
    EXPECT_EQ(entries().size(), c.result == 0 ? 1U : 0U);
    EXPECT_EQ(socket.send("three"), 0);
    EXPECT_EQ(entries().size(), 1U);
  }
}

TEST_F(LogSocketTest, TellsALogThatIsAbsentFromOneThatCannotBeReached) {
  struct {
    int error;  // of the making of the socket
    int result;
  } const cases[] = {
      {EMFILE, LOG_LOST},         {ENFILE, LOG_LOST},   {ENOBUFS, LOG_LOST}, {ENOMEM, LOG_LOST},
      {EAFNOSUPPORT, LOG_ABSENT}, {EACCES, LOG_ABSENT}, {EAGAIN, LOG_LOST},
  };
  startLog();
  for (const auto& c : cases) {
    SCOPED_TRACE(strerror(c.error));
    LogSocket socket(path());
    nextSocketError = c.error;
    EXPECT_EQ(socket.send("one"), c.result);
    EXPECT_EQ(socket.send("two"), 0);
    EXPECT_EQ(entries().size(), 1U);
  }
}

bool isOpen(int descriptor) { return fcntl(descriptor, F_GETFD) != -1; }

TEST_F(LogSocketTest, ClosesItsDescriptorAtItsEnd) {
  startLog();
  const int next = dup(STDIN_FILENO);
  close(next);
  {
    LogSocket socket(path());
    EXPECT_EQ(socket.send("one"), 0);
    EXPECT_TRUE(isOpen(next));
  }
  EXPECT_FALSE(isOpen(next));
}

TEST_F(LogSocketTest, SendsAlsoWhereItsDescriptorIsTheFirst) {
  startLog();
  const int input = dup(STDIN_FILENO);
  close(STDIN_FILENO);
  {
    LogSocket socket(path());
    EXPECT_EQ(socket.send("one"), 0);
    EXPECT_EQ(socket.send("two"), 0);
    EXPECT_EQ(entries().size(), 2U);
  }
  EXPECT_FALSE(isOpen(STDIN_FILENO));
  EXPECT_EQ(dup2(input, STDIN_FILENO), STDIN_FILENO);
  close(input);
}

TEST_F(LogSocketTest, LosesALineWhereNoFileCanBeOpened) {
  startLog();
  LogSocket socket(path());
  std::vector<int> taken;
  for (int next = dup(STDIN_FILENO); next >= 0; next = dup(STDIN_FILENO)) taken.push_back(next);
  EXPECT_EQ(errno, EMFILE);
  const int result = socket.send("one");
  for (const int descriptor : taken) close(descriptor);
  EXPECT_EQ(result, LOG_LOST);
  EXPECT_EQ(socket.send("two"), 0);
}

}  // namespace
