// The fixture of tests with hostile clients: a service that has to be after each act as before.
#pragma once

#include <memory>
#include <string>

#include "tests/harness/service_test.h"

class HostileTest : public ServiceTest {
 protected:
  explicit HostileTest(const PrivateBus::Options& options = {}) : ServiceTest(options) {}
  /// Serves parameters to be attacked:
  /// - witness, which nothing but expectSound() touches,
  /// - note, which takes every value,
  /// - level, 0 to 9, and gain, with an index 1 to 2 and a range up to level,
  /// - wide, with an index 1 to 100000.
  /// Transaction 0 is open.
  void SetUp() override;
  /// After a hostile act: another client reads a value correctly, and the daemon has as many file
  /// descriptors as before the first act. Takes away what the act left in the log.
  void expectSound();

 private:
  std::unique_ptr<Client> witness_;
  size_t descriptors_ = 0;
};
