// The call queue: method calls that wait, by sender, and whose turn it is.
//
// The call server puts calls in as they come off the connection and takes them out to be served,
// both in the main loop's thread.
#pragma once

#include <dbus/dbus.h>

#include <cstdint>
#include <list>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

/// Gives back one reference to a message of the bus library.
struct UnrefMessage {
  /// `message` is not null.
  void operator()(DBusMessage* message) const { dbus_message_unref(message); }
};
/// Owns one reference to a message.
using MessagePointer = std::unique_ptr<DBusMessage, UnrefMessage>;

/// Has an exported object serve a call: the reply is sent. Returns what a handler of the bus
/// library does: DBUS_HANDLER_RESULT_NOT_YET_HANDLED where the object has no such method. Raises no
/// exception.
using ServeCall = DBusHandlerResult (*)(DBusConnection* connection, DBusMessage* call);

/// A call with what has to be known when it is served.
struct WaitingCall {
  MessagePointer message;
  ServeCall serve = nullptr;
  uint64_t number = 0;   ///< ascends as the calls come in; given by the call server, from 1
  bool hasLeft = false;  ///< whether its sender has left the bus
};

/// Senders take turns: each turn is one call, so that a sender with many calls keeps another
/// waiting for one of them only. The calls of one sender keep their order. All senders that have
/// left the bus count as one sender. Every function takes constant time on average, but leave().
class CallQueue {
 public:
  /// Whether no call waits.
  [[nodiscard]] bool empty() const { return count_ == 0; }
  /// How many calls wait, of all senders together.
  [[nodiscard]] size_t count() const { return count_; }
  /// Adds `call` behind the other calls of `sender`, a unique name of the bus, which is copied.
  /// Raises std::bad_alloc where memory is exhausted: the queue is then as before, and the
  /// reference in `call` is given back.
  void add(std::string_view sender, WaitingCall call);
  /// Takes out the call whose turn it is. Its sender's next turn comes after those of all others.
  /// An empty queue is a programming error and stops the program.
  WaitingCall next();
  /// `sender` has left the bus; one without calls is passed over. Its calls are dropped, but for
  /// the first and for those that want no reply: command-line tools make their only call and leave
  /// at once. What is kept takes the turn of `sender`, or joins the calls of those that have left
  /// before. Takes time in proportion to the calls of `sender`. Where memory is exhausted, all of
  /// its calls are dropped.
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
  std::unordered_map<std::string_view, Senders::iterator> byName_;  // views of the senders' names
  size_t count_ = 0;
};
