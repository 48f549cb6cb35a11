// The operations behind the methods: each does one thing in a transaction and packs its reply.
//
// Each returns 0, the result of the database's function that it calls, or a result of errors.h;
// INTERNAL_ERROR where the reply is too long for a message, or where there is no memory for it.
// Reply arguments are set only where the result is 0, and are then the caller's, to be freed as the
// binding library frees replies: texts and lists of texts by g_free() and g_strfreev(). Each may
// raise std::bad_alloc, and WorkExceeded where the request passes its budget.
#pragma once

#include <glib.h>

#include <functional>

#include "database/transaction.h"
#include "sw/dbus/value_object.h"

/// Runs `operation`, which gives a result, in a transaction that ends with it. It takes an id as
/// any other, but no call is served that could name it while this one lasts, so that it need not be
/// found by it.
int inNewTransaction(const std::function<int(Transaction&)>& operation);

/// The value of `name` as the transaction sees it; the empty text for an unknown name.
int getText(Transaction& transaction, const char* name, char** value);
/// The values of the names up to the end of the list, at most `count`, in their order; the empty
/// text for each unknown name.
int getTexts(Transaction& transaction, uint32_t count, char** names, char*** values);
/// Sets `valid` to whether the base bounds of the parameter accept `value`; FALSE for an unknown
/// name. Returns 0.
int validate(Transaction& transaction, const char* name, const char* value, gboolean* valid);
/// Sets a value that validates; another one is only reported in `valid`.
int checkSet(Transaction& transaction, const char* name, const char* value, gboolean* valid);
/// Sets every pair, up to the end of the shorter list. Returns the first failure.
int setTexts(Transaction& transaction, char** names, char** values, bool force);
/// Resets every name. Returns the first failure.
int resetAll(Transaction& transaction, char** names, bool force);

/// Commits and, whatever comes of it, announces what has changed as a signal of `object`.
int commitAndPublish(Transaction& transaction, ValueObject* object);

/// The names that `name` depends on, ascending in byte order, without repetition. A name without
/// indices means the parameter as a whole where it makes no instance. Returns a DependenciesResult
/// where it is not 0.
int getDependencies(Database& database, const char* name, char*** dependencyReply);
/// The range of the instance `name`: its texts, ascending, and its spans, ascending. Returns a
/// RangeResult where it is not 0.
int getRange(Transaction& transaction, const char* name, char*** texts, GPtrArray** spans);
/// For each name once; the replies are ascending by name.
int getRanges(Transaction& transaction, char** names, GPtrArray** texts, GPtrArray** spans);
/// The names of the indices of the parameter `name` that are available, in index order. Returns
/// PARAMETER_NOT_FOUND where there is no such parameter.
int getParmIndices(Transaction& transaction, const char* name, char*** indices);
/// The values that the index `name` takes now: its texts and its spans, ascending. Returns an
/// IndexRangeResult where it is not 0.
int getIndexRange(Transaction& transaction, const char* name, char*** texts, GPtrArray** spans);
