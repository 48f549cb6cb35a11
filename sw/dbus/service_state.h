// The state of the service: what every method works on.
#pragma once

#include <glib.h>

#include <cstdint>
#include <optional>
#include <string_view>

#include "database/database.h"
#include "database/transaction.h"
#include "sw/dbus/transaction_owners.h"

/// The methods are plain functions for the binding library, so they find the state through one
/// pointer: the state that was created last and still lives.
class ServiceState {
 public:
  explicit ServiceState(Database& database);
  ~ServiceState();
  ServiceState(const ServiceState&) = delete;
  ServiceState& operator=(const ServiceState&) = delete;

  /// The state that lives; there has to be one.
  static ServiceState& current();

  /// Makes the main loop. Returns 0, or 1 when it cannot be had.
  int createMainLoop();
  /// Makes the lock. Returns 0, or 1 when it cannot be had.
  int createLock();
  /// Gives up the lock and ends the main loop. What is served afterwards finds no lock.
  void stop();

  /// The unique name of the client whose call is being served; empty where it has left.
  void setCaller(std::string_view name) { caller_ = name; }
  /// Opens a transaction of the caller's under the next free id. Returns 0, or 1 where there is
  /// none.
  int openTransaction(uint32_t& id);
  /// The open transaction of an id, for the call that is being served, or null.
  [[nodiscard]] Transaction* findTransaction(uint32_t id);
  /// Discards a transaction with its staged values. Returns 0, or 1 for an id that is not open.
  int endTransaction(uint32_t id);
  /// The call that was being served is done.
  void finishCall() noexcept;
  /// A client has left the bus.
  void clientLeft(std::string_view name) noexcept { owners_.left(name); }

  [[nodiscard]] Database& database() { return database_; }
  [[nodiscard]] Transactions& transactions() { return transactions_; }
  [[nodiscard]] GMainLoop* mainLoop() { return mainLoop_; }
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
