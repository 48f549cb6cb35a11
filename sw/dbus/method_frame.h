// The frame that all methods but die share: lock, check the object, find the transaction or make
// one, operate, turn the result into an error, unlock.
#pragma once

#include <cstdint>
#include <functional>

#include "base/work.h"
#include "database/transaction.h"
#include "sw/dbus/errors.h"
#include "sw/dbus/memory_reserve.h"
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

/// Whether methods of a family leave something in a transaction.
constexpr bool keepsMemory(MethodFamily family) {
  return family == METHOD_START || (METHOD_VALIDATE <= family && family <= METHOD_RESET_STATUS);
}

/// Runs `operation`, which gives the method's outcome, and counts its work. An exception, which
/// only exhausted memory and a passed budget of work raise, becomes an error of the family instead
/// of ending the program; start has a text for the former.
template <typename Operation>
gboolean serve(const MethodCall& call, MethodFamily family, Operation operation) {
  const ServiceLock lock;
  assertNotNull(call.object, "obj != NULL", call.method);
  Work::begin();
  try {
    if (keepsMemory(family)) requireHeadroom();
    return operation();
  } catch (const WorkExceeded&) {
    logExceededWork();
    return finishMethod(call.error, family, INTERNAL_ERROR);
  } catch (...) {
    return finishMethod(call.error, family,
                        family == METHOD_START ? OUT_OF_MEMORY : INTERNAL_ERROR);
  }
}

/// Runs `operation`, which gives a result, in the client's transaction `id`.
template <typename Operation>
gboolean inTransaction(const MethodCall& call, MethodFamily family, uint32_t id,
                       Operation operation) {
  return serve(call, family, [&] {
    Transaction* transaction = ServiceState::current().findTransaction(id);
    const int result = transaction != nullptr ? operation(*transaction) : UNKNOWN_TRANSACTION;
    return finishMethod(call.error, family, result);
  });
}

/// Runs `operation`, which gives a result, in a transaction of its own.
template <typename Operation>
gboolean inOwnTransaction(const MethodCall& call, MethodFamily family, Operation operation) {
  return serve(call, family, [&] {
    return finishMethod(call.error, family, inNewTransaction(std::ref(operation)));
  });
}

/// As inOwnTransaction, then commits, also what is staged in spite of a failure.
template <typename Operation>
gboolean andCommit(const MethodCall& call, MethodFamily family, Operation operation) {
  return inOwnTransaction(call, family, [&](Transaction& transaction) {
    const int result = operation(transaction);
    finishMethod(call.error, family, result);
    const int committed = commitAndPublish(transaction, call.object);
    finishMethod(call.error, METHOD_COMMIT, committed);
    return result != 0 ? result : committed;
  });
}
