// Private buses: a bus daemon of the test's own, which allows everything.
#pragma once

#include <memory>
#include <string>

#include "tests/harness/process.h"
#include "tests/harness/temp_dir.h"

class PrivateBus {
 public:
  /// Returns when the bus accepts connections.
  PrivateBus();
  [[nodiscard]] const std::string& address() const { return address_; }
  /// Ends the bus at once.
  void stop() { process_.reset(); }

 private:
  TempDir directory_;
  std::unique_ptr<Process> process_;
  std::string address_;
};
