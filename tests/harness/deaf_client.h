// A client that calls and never reads what comes back.
#pragma once

#include <dbus/dbus.h>

#include <string>

/// The library of the other clients always reads, so this one has another.
class DeafClient {
 public:
  explicit DeafClient(const std::string& busAddress);
  /// Vanishes with everything that is still on its way.
  ~DeafClient();
  DeafClient(const DeafClient&) = delete;
  DeafClient& operator=(const DeafClient&) = delete;

  /// Calls a method that takes no argument, or one text; the call has left when this returns.
  void send(const char* method, const char* argument = nullptr);
  /// Calls Watch of the second interface, for both of its signals.
  void watch();
  /// Has every signal of the bus sent to it.
  void subscribe();

 private:
  void sendMessage(DBusMessage* message);
  DBusConnection* connection_;
};
