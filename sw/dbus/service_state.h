// The state of the service: what every method works on.
//
// It belongs to the main loop's thread. Around each call the call server sets the caller, has the
// method run, and finishes the call; the method in between opens, finds and ends transactions.
#pragma once

#include <glib.h>

#include <cstdint>
#include <optional>
#include <string_view>

#include "database/database.h"
#include "database/transaction.h"
#include "sw/dbus/transaction_owners.h"

/// The methods are plain functions for the binding library and are handed no state of ours, so they
/// find it through one pointer: the state that was made last. One lives at a time.
class ServiceState {
 public:
  /// The current state from now on, with neither main loop nor lock. `database` outlives it.
  explicit ServiceState(Database& database);
  /// Drops the open transactions, gives up the lock and frees the main loop. There is no current
  /// state then.
  ~ServiceState();
  ServiceState(const ServiceState&) = delete;
  ServiceState& operator=(const ServiceState&) = delete;

  /// The state that lives. That there is none is a programming error and stops the program.
  static ServiceState& current();

  /// Makes the main loop. Returns 0, or 1 when it cannot be had.
  int createMainLoop();
  /// Makes the lock. Returns 0, or 1 when it cannot be had.
  int createLock();
  /// Frees the lock, which nobody may hold, and ends the main loop, as far as they were made. Calls
  /// that are served afterwards find no lock.
  void stop();

  /// The unique name of the client whose call is served next; empty where that has left. The text
  /// outlives the call.
  void setCaller(std::string_view name) { caller_ = name; }
  /// Opens a transaction of the caller's under the next free id. Returns 0, or 1 where every id is
  /// in use; `id` is then the last one that was tried. Raises std::bad_alloc where memory is
  /// exhausted: no transaction is open then, but the id may be used up.
  int openTransaction(uint32_t& id);
  /// The open transaction of `id`, or null. It is noted as that of the call: finishCall() counts
  /// what it holds. Valid until it is ended.
  [[nodiscard]] Transaction* findTransaction(uint32_t id);
  /// Ends a transaction and drops what is staged in it. Returns 0, or 1 for an id that is not open.
  int endTransaction(uint32_t id);
  /// To be called when a call is done. Its transaction may have grown; where that is one whose
  /// client has left, the oldest of those may be ended (transaction_owners.h).
  void finishCall() noexcept;
  /// The client with this unique name has left the bus.
  void clientLeft(std::string_view name) noexcept { owners_.left(name); }

  /// The database that was given to the constructor.
  [[nodiscard]] Database& database() { return database_; }
  /// The open transactions of all clients. Ending one here leaves its owner noted: use
  /// endTransaction().
  [[nodiscard]] Transactions& transactions() { return transactions_; }
  /// The main loop, which stays the state's; null before createMainLoop().
  [[nodiscard]] GMainLoop* mainLoop() { return mainLoop_; }
  /// The lock that methods hold while they run (method_frame.h says why there is one); null before
  /// createLock() and after stop().
  [[nodiscard]] GMutex* lock() { return lock_; }

 private:
  void freeLock();

  Database& database_;
  Transactions transactions_;
  TransactionOwners owners_{transactions_};
  std::string_view caller_;
  std::optional<uint32_t> used_;  // the transaction of the call that is being served
  GMainLoop* mainLoop_ = nullptr;
  GMutex* lock_ = nullptr;
};
