// The fixture of most bus tests: a private bus, the daemon on it, a client, and tables of facts.
#pragma once

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "tests/harness/client.h"
#include "tests/harness/daemon.h"
#include "tests/harness/private_bus.h"

/// One call and everything that can be seen of it.
struct Fact {
  std::string call;                       ///< as for Client::answer
  std::string answer;                     ///< as from Client::answer
  std::vector<std::string> changed = {};  ///< the texts of the signal; empty: there is none
  std::vector<std::string> log = {};      ///< the lines that go to the system log
};

class ServiceTest : public testing::Test {
 protected:
  explicit ServiceTest(const PrivateBus::Options& options = {});
  /// Starts the daemon on `text` in the foreground and waits until it serves.
  void serve(const std::string& text, const std::vector<std::string>& constants = {},
             const std::map<std::string, std::string>& environment = {});
  /// Makes the calls one after the other and compares what is seen of each.
  void expectFacts(const std::vector<Fact>& facts);
  [[nodiscard]] Client& client() { return client_; }
  [[nodiscard]] bool hasDaemon() const { return daemon_ != nullptr; }
  [[nodiscard]] Daemon& daemon() { return *daemon_; }
  [[nodiscard]] PrivateBus& bus() { return bus_; }
  /// What the daemon shall have written to standard error at its end; by default nothing.
  void expectErrors(std::string errors) { expectedErrors_ = std::move(errors); }
  /// The daemon does nothing until resume(), so that all that is sent until then is there at once.
  void pause();
  void resume();
  /// Ends the daemon with `die` and checks that it ends in order.
  void expectOrderlyEnd();
  /// For a daemon whose end the test has seen itself.
  void forgetDaemon() { daemon_.reset(); }
  void TearDown() override;

 private:
  PrivateBus bus_;
  Client client_;
  std::unique_ptr<Daemon> daemon_;
  std::string expectedErrors_;
};
