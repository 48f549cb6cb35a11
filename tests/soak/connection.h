// One connection to the bus: sends calls without waiting, and hands out what comes in.
#pragma once

#include <dbus/dbus.h>

#include <cstdint>
#include <string>
#include <vector>

#include "tests/soak/call.h"

/// What the daemon has sent: a signal, or the answer to a call.
struct Incoming {
  bool isSignal = false;
  std::string to = {};                  ///< of an answer: the connection whose call it was
  uint32_t serial = 0;                  ///< of an answer: what send() gave for the call
  std::string answer = {};              ///< as call.h says
  std::vector<std::string> texts = {};  ///< of a signal
};

class Connection {
 public:
  /// Ends the program when there is no such bus.
  explicit Connection(const std::string& busAddress);
  ~Connection();
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  /// From now on the answers to all other connections come in here too.
  void observeAnswers();
  [[nodiscard]] std::string name() const { return dbus_bus_get_unique_name(connection_); }
  uint32_t send(const Call& call);
  /// Sends and reads what it can without waiting. What has come from the daemon, in its order.
  std::vector<Incoming> exchange();
  [[nodiscard]] bool isOpen() const;
  [[nodiscard]] int descriptor() const;
  /// Whether there is something to send that the bus has not taken yet.
  [[nodiscard]] bool isSending() const;

 private:
  void listen(const char* rule);

  DBusConnection* connection_;
};
