// The methods of the bus interface, as the generated binding calls them.
//
// dbus-binding-tool makes the names and the arguments from transaction_interface.xml: hence the
// prefix value_object_, gboolean and the types of GLib. The binding library finds the methods in
// the generated table (value_object.cpp), and calls them in the main loop's thread, one at a time.
//
// Each method returns TRUE, or FALSE with a new error in `error`, which the binding library frees.
// errors.h tells the methods' families and the results that become errors. No exception leaves a
// method.
//
// In: `obj` is the service object, and null stops the program. `id` is a transaction's, any number.
// Names and values are texts in valid UTF-8, never null; lists of them end with a null pointer. All
// stay the binding library's, as long as the call lasts. Out: what a method hands out is newly
// allocated, and the binding library frees it; it is set only where the method returns TRUE.
//
// A method whose name starts with "single_" takes no id: it works in a transaction of its own, and
// one that writes also commits that, also where a part was refused (andCommit()). The "status"
// methods force: they write where a parameter is read-only. org.tavrel.transaction(7) is the
// clients' reference.
#pragma once

#include <glib.h>

#include "sw/dbus/value_object.h"

/// Opens a transaction of the caller's. Its id ascends from 0.
gboolean value_object_start(ValueObject* obj, guint32* id, GError** error);
/// The value of `name`: staged, else committed, else a constant's; empty for an unknown name.
gboolean value_object_get(ValueObject* obj, guint32 id, const char* name, char** value,
                          GError** error);
/// The values, as of get, of the first `count` of `names`, or of all where there are fewer.
gboolean value_object_get_bulk(ValueObject* obj, guint32 id, guint32 count, char** names,
                               char*** values, GError** error);
/// Whether set would accept `value`; FALSE for an unknown name.
gboolean value_object_is_valid(ValueObject* obj, guint32 id, const char* name, const char* value,
                               gboolean* valid, GError** error);
/// Stages `value` where it is valid, and tells in `valid` whether it is.
gboolean value_object_check_set(ValueObject* obj, guint32 id, const char* name, const char* value,
                                gboolean* valid, GError** error);
/// Stages `value` for the instance `name`.
gboolean value_object_set(ValueObject* obj, guint32 id, const char* name, const char* value,
                          GError** error);
/// As set, by force.
gboolean value_object_set_status(ValueObject* obj, guint32 id, const char* name, const char* value,
                                 GError** error);
/// Sets pairs, up to the end of the shorter list. All are tried; the error is of the first refused.
gboolean value_object_set_bulk(ValueObject* obj, guint32 id, char** names, char** values,
                               GError** error);
/// As set_bulk, by force.
gboolean value_object_set_status_bulk(ValueObject* obj, guint32 id, char** names, char** values,
                                      GError** error);
/// Stages the default of the instance `name`, which is worked out at the commit.
gboolean value_object_reset(ValueObject* obj, guint32 id, const char* name, GError** error);
/// As reset, by force.
gboolean value_object_reset_status(ValueObject* obj, guint32 id, const char* name, GError** error);
/// Resets all `names`. All are tried; the error is of the first refused.
gboolean value_object_reset_bulk(ValueObject* obj, guint32 id, char** names, GError** error);
/// As reset_bulk, by force.
gboolean value_object_reset_status_bulk(ValueObject* obj, guint32 id, char** names, GError** error);
/// Commits, announces the changes, also of a commit that fails, and leaves the transaction empty.
gboolean value_object_commit(ValueObject* obj, guint32 id, GError** error);
/// Ends the transaction `id` and drops what is staged in it.
gboolean value_object_end(ValueObject* obj, guint32 id, GError** error);
/// As get, in a transaction of its own: the committed value, else a constant's.
gboolean value_object_single_get(ValueObject* obj, const char* name, char** value, GError** error);
/// As get_bulk, in a transaction of its own.
gboolean value_object_single_get_bulk(ValueObject* obj, guint32 count, char** names, char*** values,
                                      GError** error);
/// As is_valid, in a transaction of its own.
gboolean value_object_single_is_valid(ValueObject* obj, const char* name, const char* value,
                                      gboolean* valid, GError** error);
/// As single_is_valid: what it stages ends with its transaction, as it does not commit.
gboolean value_object_single_check_set(ValueObject* obj, const char* name, const char* value,
                                       gboolean* valid, GError** error);
/// As set, then commit, in a transaction of its own; so are the methods below.
gboolean value_object_single_set(ValueObject* obj, const char* name, const char* value,
                                 GError** error);
/// As set_status, then commit.
gboolean value_object_single_set_status(ValueObject* obj, const char* name, const char* value,
                                        GError** error);
/// As set_bulk, then commit.
gboolean value_object_single_set_bulk(ValueObject* obj, char** names, char** values,
                                      GError** error);
/// As set_status_bulk, then commit.
gboolean value_object_single_set_status_bulk(ValueObject* obj, char** names, char** values,
                                             GError** error);
/// As reset, then commit.
gboolean value_object_single_reset(ValueObject* obj, const char* name, GError** error);
/// As reset_status, then commit.
gboolean value_object_single_reset_status(ValueObject* obj, const char* name, GError** error);
/// As reset_bulk, then commit.
gboolean value_object_single_reset_bulk(ValueObject* obj, char** names, GError** error);
/// As reset_status_bulk, then commit.
gboolean value_object_single_reset_status_bulk(ValueObject* obj, char** names, GError** error);
/// The names that `name` depends on, ascending: of a base name base names, of an instance
/// instances. Needs no transaction.
gboolean value_object_get_deps(ValueObject* obj, const char* name, char*** deps, GError** error);
/// The allowed texts, and spans as (minimum, maximum), of the instance `name`, in the situation
/// that the staged values lead to. Both are ascending, and empty where everything is allowed.
gboolean value_object_get_range(ValueObject* obj, guint32 id, const char* name, char*** texts,
                                GPtrArray** spans, GError** error);
/// As get_range, of several names, ascending by name, each name once: (name, text) and (name,
/// minimum, maximum). The first name that fails is the error of the call.
gboolean value_object_get_range_bulk(ValueObject* obj, guint32 id, char** names, GPtrArray** texts,
                                     GPtrArray** spans, GError** error);
/// The names of those indices of the parameter `name` that are available in the transaction's
/// situation.
gboolean value_object_get_parm_idx(ValueObject* obj, guint32 id, const char* name, char*** indices,
                                   GError** error);
/// The values that the index `name` has in the transaction's situation, as of get_range.
gboolean value_object_get_idx_range(ValueObject* obj, guint32 id, const char* name, char*** texts,
                                    GPtrArray** spans, GError** error);
/// Ends the service: gives up the lock and ends the main loop. Always TRUE.
gboolean value_object_die(ValueObject* obj, GError** error);
