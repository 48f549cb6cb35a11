// The methods of the bus interface, as the generated binding calls them.
//
// A method without transaction id whose name starts with "single_" works in a transaction of its
// own; those that write also commit it. Each method returns TRUE, or FALSE with the error in
// `error`. What it hands out is newly allocated; the binding library frees it.
#pragma once

#include <glib.h>

#include "sw/dbus/value_object.h"

gboolean value_object_start(ValueObject* obj, guint32* id, GError** error);
gboolean value_object_get(ValueObject* obj, guint32 id, const char* name, char** value,
                          GError** error);
gboolean value_object_get_bulk(ValueObject* obj, guint32 id, guint32 count, char** names,
                               char*** values, GError** error);
gboolean value_object_is_valid(ValueObject* obj, guint32 id, const char* name, const char* value,
                               gboolean* valid, GError** error);
gboolean value_object_check_set(ValueObject* obj, guint32 id, const char* name, const char* value,
                                gboolean* valid, GError** error);
gboolean value_object_set(ValueObject* obj, guint32 id, const char* name, const char* value,
                          GError** error);
gboolean value_object_set_status(ValueObject* obj, guint32 id, const char* name, const char* value,
                                 GError** error);
gboolean value_object_set_bulk(ValueObject* obj, guint32 id, char** names, char** values,
                               GError** error);
gboolean value_object_set_status_bulk(ValueObject* obj, guint32 id, char** names, char** values,
                                      GError** error);
gboolean value_object_reset(ValueObject* obj, guint32 id, const char* name, GError** error);
gboolean value_object_reset_status(ValueObject* obj, guint32 id, const char* name, GError** error);
gboolean value_object_reset_bulk(ValueObject* obj, guint32 id, char** names, GError** error);
gboolean value_object_reset_status_bulk(ValueObject* obj, guint32 id, char** names, GError** error);
gboolean value_object_commit(ValueObject* obj, guint32 id, GError** error);
gboolean value_object_end(ValueObject* obj, guint32 id, GError** error);
gboolean value_object_single_get(ValueObject* obj, const char* name, char** value, GError** error);
gboolean value_object_single_get_bulk(ValueObject* obj, guint32 count, char** names, char*** values,
                                      GError** error);
gboolean value_object_single_is_valid(ValueObject* obj, const char* name, const char* value,
                                      gboolean* valid, GError** error);
gboolean value_object_single_check_set(ValueObject* obj, const char* name, const char* value,
                                       gboolean* valid, GError** error);
gboolean value_object_single_set(ValueObject* obj, const char* name, const char* value,
                                 GError** error);
gboolean value_object_single_set_status(ValueObject* obj, const char* name, const char* value,
                                        GError** error);
gboolean value_object_single_set_bulk(ValueObject* obj, char** names, char** values,
                                      GError** error);
gboolean value_object_single_set_status_bulk(ValueObject* obj, char** names, char** values,
                                             GError** error);
gboolean value_object_single_reset(ValueObject* obj, const char* name, GError** error);
gboolean value_object_single_reset_status(ValueObject* obj, const char* name, GError** error);
gboolean value_object_single_reset_bulk(ValueObject* obj, char** names, GError** error);
gboolean value_object_single_reset_status_bulk(ValueObject* obj, char** names, GError** error);
gboolean value_object_get_deps(ValueObject* obj, const char* name, char*** deps, GError** error);
gboolean value_object_get_range(ValueObject* obj, guint32 id, const char* name, char*** texts,
                                GPtrArray** spans, GError** error);
gboolean value_object_get_range_bulk(ValueObject* obj, guint32 id, char** names, GPtrArray** texts,
                                     GPtrArray** spans, GError** error);
gboolean value_object_get_parm_idx(ValueObject* obj, guint32 id, const char* name, char*** indices,
                                   GError** error);
gboolean value_object_get_idx_range(ValueObject* obj, guint32 id, const char* name, char*** texts,
                                    GPtrArray** spans, GError** error);
gboolean value_object_die(ValueObject* obj, GError** error);
