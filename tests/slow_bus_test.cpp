// A slow bus: what the daemon has sent last is still read, however late the bus gets to it.
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cstring>
#include <string_view>
#include <thread>

#include "tests/harness/service_test.h"

namespace {

sockaddr_un addressOf(const std::string& path) {
  sockaddr_un address = {.sun_family = AF_UNIX, .sun_path = {}};
  EXPECT_LT(path.size(), sizeof(address.sun_path));
  strncpy(address.sun_path, path.c_str(), sizeof(address.sun_path) - 1);
  return address;
}

// The path of a bus, which is where its address says.
std::string pathOf(const std::string& busAddress) {
  const std::string_view begin = "unix:path=";
  EXPECT_TRUE(busAddress.starts_with(begin)) << busAddress;
  return busAddress.substr(begin.size(), busAddress.find(',') - begin.size());
}

// Is between one client and a bus. From the moment when it has brought the client a message
// with `word` in it, it takes nothing more from the client until it is told to go on.
class Relay {
 public:
  Relay(const std::string& busAddress, std::string_view word)
      : word_(word),
        listening_(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)),
        bus_(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    const sockaddr_un own = addressOf(path());
    const sockaddr_un bus = addressOf(pathOf(busAddress));
    EXPECT_EQ(bind(listening_, reinterpret_cast<const sockaddr*>(&own), sizeof(own)), 0);
    EXPECT_EQ(listen(listening_, 1), 0);
    EXPECT_EQ(connect(bus_, reinterpret_cast<const sockaddr*>(&bus), sizeof(bus)), 0);
    thread_ = std::thread([this] { run(); });
  }
  // The client has gone.
  ~Relay() {
    goOn();
    shutdown(listening_, SHUT_RDWR);
    thread_.join();
    close(listening_);
    close(bus_);
  }
  Relay(const Relay&) = delete;
  Relay& operator=(const Relay&) = delete;

  [[nodiscard]] std::string address() const { return "unix:path=" + path(); }
  [[nodiscard]] bool isWaiting() const { return isWaiting_; }
  void goOn() { isWaiting_ = false; }

 private:
  [[nodiscard]] std::string path() const { return directory_.path() + "/relay"; }

  void run() {
    const int client = accept4(listening_, nullptr, nullptr, SOCK_CLOEXEC);
    bool isOpen = client >= 0;
    while (isOpen) {
      constexpr int STEP = 10;  // in milliseconds
      const short fromClient = isWaiting_ ? 0 : POLLIN;
      std::array<pollfd, 2> ends = {{{client, fromClient, 0}, {bus_, POLLIN, 0}}};
      poll(ends.data(), ends.size(), STEP);
      if ((ends[1].revents & POLLIN) != 0) isOpen = pass(bus_, client);
      if (isOpen && !isWaiting_ && (ends[0].revents & (POLLIN | POLLHUP)) != 0) {
        isOpen = pass(client, bus_);
      }
    }
    if (client >= 0) close(client);
  }

  // False at the end of what comes.
  bool pass(int from, int to) {
    const ssize_t size = read(from, buffer_.data(), buffer_.size());
    if (size <= 0) return false;
    const std::string_view bytes(buffer_.data(), static_cast<size_t>(size));
    // The answer cannot be taken before the call has been brought.
    if (from == bus_ && bytes.find(word_) != std::string_view::npos) isWaiting_ = true;
    return send(to, bytes.data(), bytes.size(), MSG_NOSIGNAL) == size;
  }

  const std::string_view word_;
  TempDir directory_;
  int listening_;
  int bus_;
  std::array<char, 65536> buffer_ = {};
  std::atomic<bool> isWaiting_ = false;
  std::thread thread_;
};

TEST(SlowBus, GetsTheReplyToDieBeforeTheDaemonEnds) {
  PrivateBus bus;
  Client client(bus.address());
  Relay relay(bus.address(), std::string_view("die\0", 4));
  Daemon daemon({.busAddress = relay.address()});
  ASSERT_TRUE(client.waitForService(daemon.process()));
  client.send("die()");
  for (int i = 0; i < PATIENCE * 1000 && !relay.isWaiting(); ++i) usleep(1000);
  usleep(300'000);  // it waits for two seconds
  EXPECT_TRUE(daemon.process().running());
  relay.goOn();
  EXPECT_EQ(client.collectAnswers(), std::vector<std::string>{"()"});
  EXPECT_EQ(daemon.waitForEnd().status, 1);
}

}  // namespace
