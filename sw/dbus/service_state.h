// The state of the service: what every method works on.
#pragma once

#include <glib.h>

#include "database/database.h"
#include "database/transaction.h"

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

  [[nodiscard]] Database& database() { return database_; }
  [[nodiscard]] Transactions& transactions() { return transactions_; }
  [[nodiscard]] GMainLoop* mainLoop() { return mainLoop_; }
  [[nodiscard]] GMutex* lock() { return lock_; }

 private:
  void freeLock();

  Database& database_;
  Transactions transactions_;
  GMainLoop* mainLoop_ = nullptr;
  GMutex* lock_ = nullptr;
};
