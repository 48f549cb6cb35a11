// The call server: takes the messages off the connection and has the calls among them served.
//
// All of it runs in the main loop's thread, in three sources of the loop by priority: first the
// messages that were read are taken, then the binding library reads the socket, last the calls that
// wait are served.
#pragma once

#include <dbus/dbus.h>
#include <glib.h>

#include <cstdint>
#include <optional>
#include <string_view>

#include "sw/dbus/call_queue.h"
#include "sw/dbus/service_state.h"

/// A call is served as it comes where no other call waits and no other message is there. Otherwise
/// all messages that are there are taken off the connection first, and the calls among them are
/// then served in turns of their senders (call_queue.h). So a sender with many long calls keeps
/// another waiting for one of them, as long as the other's call is among those that are taken
/// ahead: MAX_TAKEN calls, or MAX_TAKEN_BYTES and one message more. The calls behind them come in
/// the order in which the bus gives them out. org.tavrel.transaction(7) promises this under Order.
class CallServer {
 public:
  /// Where so many calls wait, the next one is taken only as another is served; while none may be
  /// served (MAX_UNSENT_BYTES), MAX_TAKEN_BYTES alone is the bound.
  static constexpr size_t MAX_TAKEN = 4096;
  /// From this many bytes of messages in memory on, the bus library reads no more: 16 MiB.
  static constexpr long MAX_TAKEN_BYTES = 16L << 20U;

  /// No call is served while more than these bytes (32 MiB) are not sent: where the bus takes
  /// nothing more from the daemon, replies would fill the memory.
  static constexpr long MAX_UNSENT_BYTES = 32L << 20U;

  /// From here on the main loop takes messages off `connection`, and serves calls for the exported
  /// object that are given to take(). `connection` and `state`, which has its main loop, outlive
  /// the server. To be made before the service has its name, or a client that leaves could be
  /// missed. Raises std::bad_alloc where the bus library has no memory for it.
  CallServer(DBusConnection* connection, ServiceState& state);
  /// Drops the calls that still wait.
  ~CallServer();
  CallServer(const CallServer&) = delete;
  CallServer& operator=(const CallServer&) = delete;

  /// Has `serve` serve a call, or keeps it with a reference of its own until it is its turn. Where
  /// there is no memory to keep it, all that wait are served first, and then this one. Returns what
  /// `serve` gives for a call that is served at once, otherwise
  /// DBUS_HANDLER_RESULT_HANDLED. A call that comes after the end of the main loop is dropped: the
  /// bus answers it when the connection ends.
  DBusHandlerResult take(DBusMessage* message, ServeCall serve) noexcept;
  /// Ends the main loop, from within it. What has come in until now is still taken, up to
  /// some MAX_TAKEN calls; serveEarlier() serves them.
  void end();
  /// To be called once the main loop has ended. Where a call (die) has ended it, serves the waiting
  /// calls that came in before that one; where end() has, all that wait. Gives up where more than
  /// MAX_UNSENT_BYTES stay unsent for two seconds before a call, or where the bus ends meanwhile.
  void serveEarlier();

 private:
  struct Source;
  struct CallToServe {
    DBusMessage* message;
    ServeCall serve;
    uint64_t number;
  };
  GSource* addSource(int priority, bool (CallServer::*isReady)() const, void (CallServer::*act)());
  static DBusHandlerResult filter(DBusConnection* connection, DBusMessage* message, void* self);

  [[nodiscard]] bool hasMessage() const;
  [[nodiscard]] bool mustFreeMemory() const;
  [[nodiscard]] bool mayTake() const { return hasMessage() || mustFreeMemory(); }
  [[nodiscard]] bool mayServe() const;
  [[nodiscard]] bool hasCall() const { return !queue_.empty() && mayServe(); }
  void handleSignal(DBusMessage* signal) noexcept;
  void takeMessages();
  void takeOrFree();
  void serveBatch();
  void serveNext();
  DBusHandlerResult serve(const CallToServe& call, std::string_view caller);

  DBusConnection* connection_;
  ServiceState& state_;
  CallQueue queue_;
  uint64_t taken_ = 0;            // calls so far
  std::optional<uint64_t> last_;  // the last call to be served, once the main loop is ended
  GSource* takeSource_;
  GSource* serveSource_;
};
