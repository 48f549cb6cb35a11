// The frame that all methods but die share: lock, check the object, find the transaction or make
// one, operate, turn the result into an error, unlock.
#pragma once

#include <cstdint>

#include "database/transaction.h"
#include "sw/dbus/errors.h"
#include "sw/dbus/null_check.h"
#include "sw/dbus/operations.h"
#include "sw/dbus/service_state.h"
#include "sw/dbus/value_object.h"

/// What every method is called with, and its own name.
struct MethodCall {
  const char* method;
  ValueObject* object;
  GError** error;
};

/// Holds the service's lock; no lock after die, and none is needed then.
class ServiceLock {
 public:
  ServiceLock() : lock_(ServiceState::current().lock()) {
    if (lock_ != nullptr) g_mutex_lock(lock_);
  }
  ~ServiceLock() {
    if (lock_ != nullptr) g_mutex_unlock(lock_);
  }
  ServiceLock(const ServiceLock&) = delete;
  ServiceLock& operator=(const ServiceLock&) = delete;

 private:
  GMutex* lock_;
};

/// A transaction that lives as long as the call.
class OwnTransaction {
 public:
  OwnTransaction() : transaction_(ServiceState::current().transactions().open(id_)) {}
  ~OwnTransaction() {
    // It is open, so that ending it cannot fail; where every id is in use it never was.
    if (transaction_ != nullptr) {
      static_cast<void>(ServiceState::current().transactions().end(id_));
    }
  }
  OwnTransaction(const OwnTransaction&) = delete;
  OwnTransaction& operator=(const OwnTransaction&) = delete;
  [[nodiscard]] Transaction* get() { return transaction_; }

 private:
  uint32_t id_ = 0;
  Transaction* transaction_;
};

/// Runs `operation`, which gives the method's outcome. An exception, which only exhausted memory
/// raises, becomes an error of the family instead of ending the program; start has a text for it.
template <typename Operation>
gboolean serve(const MethodCall& call, methodFamily_t family, Operation operation) {
  const ServiceLock lock;
  assertNotNull(call.object, "obj != NULL", call.method);
  try {
    return operation();
  } catch (...) {
    return finishMethod(call.error, family,
                        family == METHOD_START ? OUT_OF_MEMORY : INTERNAL_ERROR);
  }
}

/// Runs `operation`, which gives a result, in the client's transaction `id`.
template <typename Operation>
gboolean inTransaction(const MethodCall& call, methodFamily_t family, uint32_t id,
                       Operation operation) {
  return serve(call, family, [&] {
    Transaction* transaction = ServiceState::current().transactions().find(id);
    const int result = transaction != nullptr ? operation(*transaction) : UNKNOWN_TRANSACTION;
    return finishMethod(call.error, family, result);
  });
}

/// Runs `operation`, which gives a result, in a transaction of its own.
template <typename Operation>
gboolean inOwnTransaction(const MethodCall& call, methodFamily_t family, Operation operation) {
  return serve(call, family, [&] {
    OwnTransaction own;
    const int result = own.get() != nullptr ? operation(*own.get()) : UNKNOWN_TRANSACTION;
    return finishMethod(call.error, family, result);
  });
}

/// As inOwnTransaction, then commits, also what is staged in spite of a failure.
template <typename Operation>
gboolean andCommit(const MethodCall& call, methodFamily_t family, Operation operation) {
  return inOwnTransaction(call, family, [&](Transaction& transaction) {
    const int result = operation(transaction);
    finishMethod(call.error, family, result);
    const int committed = commitAndPublish(transaction, call.object);
    finishMethod(call.error, METHOD_COMMIT, committed);
    return result != 0 ? result : committed;
  });
}
