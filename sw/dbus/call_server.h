// The call server: takes the messages off the connection and has the calls among them served.
#pragma once

#include <dbus/dbus.h>
#include <glib.h>

#include <cstdint>
#include <optional>
#include <string_view>

#include "sw/dbus/call_queue.h"
#include "sw/dbus/service_state.h"

/// A call behind which nothing waits is served as it comes. Others are taken off the connection
/// first, as far as they are there, and then served in turns of their senders; most of those of a
/// sender that has left the bus are dropped. So a sender with many long calls
/// keeps another waiting for one of them, as long as the other's call is among those that are taken
/// ahead: these are MAX_TAKEN at most, and MAX_TAKEN_BYTES with one message more. What is behind
/// them is in the order in which the bus gives it out.
class CallServer {
 public:
  static constexpr size_t MAX_TAKEN = 4096;
  static constexpr long MAX_TAKEN_BYTES = 16L << 20U;

  /// Nothing is served while more than this is not sent: where the bus takes nothing more from the
  /// daemon, replies would fill the memory.
  static constexpr long MAX_UNSENT_BYTES = 32L << 20U;

  /// From here on the main loop takes messages off `connection`, and serves calls for the exported
  /// object that are given to take(). To be made before the service has its name, or the end of a
  /// client could be missed.
  CallServer(DBusConnection* connection, ServiceState& state);
  ~CallServer();
  CallServer(const CallServer&) = delete;
  CallServer& operator=(const CallServer&) = delete;

  /// Serves a call, or keeps it until it is its turn.
  DBusHandlerResult take(DBusMessage* call) noexcept;
  /// Ends the main loop. What has come in until now is still taken, as far as its number is
  /// bounded.
  void end();
  /// After the main loop has ended: serves what was taken before the call that has ended it, or
  /// what was taken at all where end() has. Gives up where the bus takes nothing for two seconds.
  void serveEarlier();

 private:
  struct Source;
  GSource* addSource(int priority, bool (CallServer::*isReady)() const, void (CallServer::*act)());
  static DBusHandlerResult filter(DBusConnection* connection, DBusMessage* message, void* self);

  [[nodiscard]] bool hasMessage() const;
  [[nodiscard]] bool mustFreeMemory() const;
  [[nodiscard]] bool mayTake() const { return hasMessage() || mustFreeMemory(); }
  [[nodiscard]] bool mayServe() const;
  [[nodiscard]] bool hasCall() const { return !queue_.empty() && mayServe(); }
  void note(DBusMessage* signal) noexcept;
  void takeMessages();
  void takeOrFree();
  void serveBatch();
  void serveNext();
  DBusHandlerResult serve(DBusMessage* call, uint64_t number, std::string_view caller);

  DBusConnection* connection_;
  ServiceState& state_;
  CallQueue queue_;
  uint64_t taken_ = 0;            // calls so far
  std::optional<uint64_t> last_;  // the last call to be served, once the main loop is ended
  GSource* takeSource_;
  GSource* serveSource_;
};
