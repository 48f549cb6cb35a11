// A client on the bus library itself.
#pragma once

#include <string>

#include "tests/harness/plain_connection.h"

/// For what is timed: GLib's client makes an object of each value of a reply, which takes twice the
/// time of the rest for a large one.
class PlainClient {
 public:
  explicit PlainClient(const std::string& busAddress) : connection_(busAddress) {}

  /// Lists all parameters. Returns whether they were told.
  [[nodiscard]] bool list();

 private:
  PlainConnection connection_;
};
