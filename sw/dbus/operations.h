// The operations behind the methods: each does one thing in a transaction and packs its reply.
//
// Results are 0, what the database's operation gives, or a result of errors.h. Reply arguments are
// set only where the result is 0.
#pragma once

#include <glib.h>

#include <functional>

#include "database/transaction.h"
#include "sw/dbus/value_object.h"

/// Runs `operation`, which gives a result, in a transaction that ends with it. It takes an id as
/// any other, but no call is served that could name it while this one lasts, so that it need not be
/// found by it.
int inNewTransaction(const std::function<int(Transaction&)>& operation);

int getText(Transaction& transaction, const char* name, char** value);
/// Of the names up to the end of the list, at most `count`.
int getTexts(Transaction& transaction, uint32_t count, char** names, char*** values);
int validate(Transaction& transaction, const char* name, const char* value, gboolean* valid);
/// Sets a value that validates; another one is only reported in `valid`.
int checkSet(Transaction& transaction, const char* name, const char* value, gboolean* valid);
/// Sets every pair, up to the end of the shorter list. Returns the first failure.
int setTexts(Transaction& transaction, char** names, char** values, bool force);
/// Resets every name. Returns the first failure.
int resetAll(Transaction& transaction, char** names, bool force);

/// Commits and, whatever comes of it, announces what has changed as a signal of `object`.
int commitAndPublish(Transaction& transaction, ValueObject* object);

/// A name without indices is a parameter as a whole where it makes no instance.
int getDependencies(Database& database, const char* name, char*** dependencyReply);
int getRange(Transaction& transaction, const char* name, char*** texts, GPtrArray** spans);
/// For each name once; the replies are ascending by name.
int getRanges(Transaction& transaction, char** names, GPtrArray** texts, GPtrArray** spans);
int getParmIndices(Transaction& transaction, const char* name, char*** indices);
int getIndexRange(Transaction& transaction, const char* name, char*** texts, GPtrArray** spans);
