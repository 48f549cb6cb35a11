// Readiness: whether the device has been brought up, and the calls that wait for that.
#pragma once

#include <dbus/dbus.h>

#include <cstdint>
#include <string_view>
#include <vector>

#include "base/text_map.h"

/// Of a call that waits, its serial number alone is kept, in order that a client's waiting costs a
/// few bytes whatever it has sent.
class Readiness {
 public:
  /// So many calls of one client wait at most.
  static constexpr size_t MOST = 100;

  /// Replies are sent on `connection`, which outlives it.
  Readiness(DBusConnection* connection, bool isReady)
      : connection_(connection), isReady_(isReady) {}

  /// Whether clients need not wait. It becomes so once, and stays so.
  [[nodiscard]] bool isReady() const { return isReady_; }
  /// How many calls of `client` wait.
  [[nodiscard]] size_t countOf(std::string_view client) const;
  /// The call `serial` of `client` (a unique name, which is copied) is answered by setReady().
  /// Raises std::bad_alloc where memory is exhausted: it does not wait then.
  void wait(std::string_view client, uint32_t serial);
  /// From now on it is ready: all calls that wait are answered, each client's in their order.
  void setReady();
  /// `client` has left the bus: its calls are dropped.
  void leave(std::string_view client) noexcept;

 private:
  void answer(const char* client, uint32_t serial);

  DBusConnection* connection_;
  bool isReady_;
  TextMap<std::vector<uint32_t>> waiting_;  // by client; only clients whose calls wait
};
