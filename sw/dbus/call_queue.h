// The call queue: method calls that wait, by sender, and whose turn it is.
#pragma once

#include <dbus/dbus.h>

#include <cstdint>
#include <list>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

struct UnrefMessage {
  void operator()(DBusMessage* message) const { dbus_message_unref(message); }
};
using MessagePointer = std::unique_ptr<DBusMessage, UnrefMessage>;

struct WaitingCall {
  MessagePointer message;
  uint64_t number = 0;   ///< ascends as the calls come in
  bool hasLeft = false;  ///< whether its sender has left the bus
};

/// Senders take turns: one call of each, so that many calls of one keep another's waiting for one
/// of them. The calls of one sender keep their order. Senders that have left are one sender.
class CallQueue {
 public:
  [[nodiscard]] bool empty() const { return count_ == 0; }
  [[nodiscard]] size_t count() const { return count_; }
  /// Adds a call at the end of its sender's. Where memory is exhausted, the queue is as before.
  void add(std::string_view sender, WaitingCall call);
  /// Takes out the call whose turn it is; one has to wait.
  WaitingCall next();
  /// A sender has left the bus. Its calls are dropped, but for the first and for those that want
  /// no reply: command-line tools make their only call and leave at once. The turn is the sender's,
  /// unless others have left before.
  void leave(std::string_view sender) noexcept;

 private:
  struct Sender {
    std::string name;
    std::list<WaitingCall> calls;
  };
  using Senders = std::list<Sender>;

  Senders::iterator findOrAdd(std::string_view name, Senders::iterator before);
  void erase(Senders::iterator sender);

  Senders senders_;  // those with calls, whose turn it is first
  std::unordered_map<std::string_view, Senders::iterator> byName_;
  size_t count_ = 0;
};
