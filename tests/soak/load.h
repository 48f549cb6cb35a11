// The load: what one client calls, one call after the other. The same seed makes the same calls,
// but for the ids that the daemon gives its transactions.
#pragma once

#include <cstdint>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "tests/soak/call.h"

/// Every instance that the device can have, and no other.
std::vector<std::string> allNames();
/// A call that gives all of them their defaults.
Call bringUp();
/// A call that reads all of them.
Call readAll();

class Load {
 public:
  explicit Load(uint64_t seed) : random_(seed) {}
  /// The next call; nullopt while the answer to "start" is awaited.
  std::optional<Call> next();
  /// The answer to "start".
  void started(uint32_t id);

 private:
  uint32_t below(size_t count);
  template <typename List>
  const auto& oneOf(const List& list);
  std::string name();
  std::string value(const std::string& name);
  uint32_t transaction();
  std::vector<std::string> someNames();
  Call withValues(Call call);
  Call named(const std::string& method);

  std::mt19937_64 random_;
  std::vector<uint32_t> open_;
  uint32_t ended_ = 0xffffffff;
  bool isStarting_ = false;
};
