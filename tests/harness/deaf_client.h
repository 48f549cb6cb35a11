// A client that calls and never reads what comes back.
#pragma once

#include <dbus/dbus.h>

#include <string>

#include "tests/harness/plain_connection.h"

/// The library of the other clients always reads, so this one has another.
class DeafClient {
 public:
  /// When it ends, it vanishes with everything that is still on its way.
  explicit DeafClient(const std::string& busAddress) : connection_(busAddress) {}

  /// Calls a method that takes no argument, or one text; the call has left when this returns.
  void send(const char* method, const char* argument = nullptr);
  /// Calls Watch of the second interface, for both of its signals.
  void watch();
  /// Has every signal of the bus sent to it.
  void subscribe();

 private:
  void sendMessage(DBusMessage* message);
  PlainConnection connection_;
};
