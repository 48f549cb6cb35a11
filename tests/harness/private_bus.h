// Private buses: a bus daemon of the test's own, which allows everything unless the test wants
// less.
#pragma once

#include <map>
#include <memory>
#include <string>

#include "tests/harness/process.h"
#include "tests/harness/temp_dir.h"

class PrivateBus {
 public:
  struct Options {
    bool allowsNames = true;         ///< whether clients may own names
    std::string configuration = {};  ///< a file that comes after the policy, before the limits
    std::string policy = {};         ///< further rules, in the form of the bus's configuration
    /// By their names in the bus's configuration. By default those of a session bus as it is
    /// usually set up: wide enough never to be met. The bus has its own for those that are not
    /// given.
    std::map<std::string, size_t> limits = {
        {"max_incoming_bytes", 1000000000},    {"max_incoming_unix_fds", 250000000},
        {"max_message_unix_fds", 4096},        {"max_outgoing_unix_fds", 250000000},
        {"max_outgoing_bytes", 1000000000},    {"max_message_size", 1000000000},
        {"max_replies_per_connection", 50000}, {"reply_timeout", 600000}};
  };
  /// Returns when the bus accepts connections.
  PrivateBus() : PrivateBus(Options()) {}
  explicit PrivateBus(const Options& options);
  [[nodiscard]] const std::string& address() const { return address_; }
  [[nodiscard]] pid_t pid() const { return process_->pid(); }
  /// Ends the bus at once.
  void stop() { process_.reset(); }

 private:
  TempDir directory_;
  std::unique_ptr<Process> process_;
  std::string address_;
};
