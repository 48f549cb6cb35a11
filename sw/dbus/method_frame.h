// The frame that all methods but die share: lock, check the object, find the transaction or make
// one, operate, turn the result into an error, unlock.
//
// A method in server_methods.cpp is one call of a template here, with a lambda that does the work
// (operations.h), such as
//
//   gboolean value_object_reset(ValueObject* obj, guint32 id, const char* name, GError** error) {
//     return inTransaction({__func__, obj, error}, METHOD_RESET, id,
//                          [&](Transaction& t) { return t.reset(name, false); });
//   }
//
// The binding library calls the methods in the main loop's thread, one at a time. No exception may
// leave a method, as the binding library is in C: serve() is where all exceptions end.
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

/// What every method is called with, and its own name. All of it is the caller's and outlives the
/// call.
struct MethodCall {
  const char* method;   ///< the function's name, for assertions only
  ValueObject* object;  ///< null is a programming error and stops the program
  GError** error;       ///< where the error goes; may be null
};

/// Holds the service's lock while it lives. The process has one thread (docs/design.md), so nobody
/// ever waits for the lock: it marks what a second thread would have to be kept from. There is no
/// lock after die, and none is needed then, as the calls that are still served are served by the
/// same thread.
class ServiceLock {
 public:
  /// A current ServiceState has to live.
  ServiceLock() : lock_(ServiceState::current().lock()) {
    if (lock_ != nullptr) g_mutex_lock(lock_);
  }
  /// Unlocks the lock that was there at first; the operation may not have freed it.
  ~ServiceLock() {
    if (lock_ != nullptr) g_mutex_unlock(lock_);
  }
  ServiceLock(const ServiceLock&) = delete;
  ServiceLock& operator=(const ServiceLock&) = delete;

 private:
  GMutex* lock_;
};

/// Whether methods of `family` leave something in a transaction, so that they have to leave
/// HEADROOM: start, and the families from METHOD_VALIDATE, to which check_set belongs, to
/// METHOD_RESET_STATUS. A commit is not among them: it looks for memory value by value (publish.h).
constexpr bool keepsMemory(MethodFamily family) {
  return family == METHOD_START || (METHOD_VALIDATE <= family && family <= METHOD_RESET_STATUS);
}

/// Runs `operation`, which takes no argument and returns TRUE, or FALSE with the error set, under
/// the lock and with a new budget of work. Returns what `operation` does.
///
/// An exception becomes an error of `family` instead of ending the program. Only two are raised:
/// std::bad_alloc where memory is exhausted (OUT_OF_MEMORY for start, otherwise INTERNAL_ERROR),
/// and WorkExceeded where the budget is passed (INTERNAL_ERROR, and a line in the system log). What
/// `operation` has staged or stored until then is not undone. For a family that keepsMemory() it
/// does not even start without HEADROOM.
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

/// Runs `operation`, which takes a Transaction& and returns 0 or a result that errors.h has a text
/// for, in the client's transaction `id`. Returns TRUE for 0, otherwise FALSE with the error; that
/// of UNKNOWN_TRANSACTION where `id` is not open.
template <typename Operation>
gboolean inTransaction(const MethodCall& call, MethodFamily family, uint32_t id,
                       Operation operation) {
  return serve(call, family, [&] {
    Transaction* transaction = ServiceState::current().findTransaction(id);
    const int result = transaction != nullptr ? operation(*transaction) : UNKNOWN_TRANSACTION;
    return finishMethod(call.error, family, result);
  });
}

/// As inTransaction(), in a transaction of its own, which ends with the call (see
/// inNewTransaction()). UNKNOWN_TRANSACTION where every id is in use.
template <typename Operation>
gboolean inOwnTransaction(const MethodCall& call, MethodFamily family, Operation operation) {
  return serve(call, family, [&] {
    return finishMethod(call.error, family, inNewTransaction(std::ref(operation)));
  });
}

/// As inOwnTransaction(), then commits and announces the changes, also where `operation` has failed
/// in part: what it has staged is committed all the same. TRUE only where both succeed. The error
/// is that of the first failure: of `operation` in `family`, of the commit in METHOD_COMMIT. After
/// an exception from `operation`, nothing is committed.
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
