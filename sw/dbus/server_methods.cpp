#include "sw/dbus/server_methods.h"

#include "sw/dbus/method_frame.h"
#include "sw/dbus/operations.h"
#include "sw/dbus/spare_memory.h"

gboolean value_object_start(ValueObject* obj, guint32* id, GError** error) {
  return serve({__func__, obj, error}, METHOD_START, [&] {
    assertNotNull(id, "id != NULL", "value_object_start");
    // That every id is in use cannot come about: 2^32 transactions take a terabyte. The method
    // would give the id of another one.
    static_cast<void>(ServiceState::current().openTransaction(*id));
    return TRUE;
  });
}

gboolean value_object_get(ValueObject* obj, guint32 id, const char* name, char** value,
                          GError** error) {
  return inTransaction({__func__, obj, error}, METHOD_GET, id,
                       [&](Transaction& transaction) { return getText(transaction, name, value); });
}

gboolean value_object_get_bulk(ValueObject* obj, guint32 id, guint32 count, char** names,
                               char*** values, GError** error) {
  return inTransaction({__func__, obj, error}, METHOD_GET_BULK, id, [&](Transaction& transaction) {
    return getTexts(transaction, count, names, values);
  });
}

gboolean value_object_is_valid(ValueObject* obj, guint32 id, const char* name, const char* value,
                               gboolean* valid, GError** error) {
  return inTransaction({__func__, obj, error}, METHOD_VALIDATE, id, [&](Transaction& transaction) {
    return validate(transaction, name, value, valid);
  });
}

gboolean value_object_check_set(ValueObject* obj, guint32 id, const char* name, const char* value,
                                gboolean* valid, GError** error) {
  return inTransaction({__func__, obj, error}, METHOD_VALIDATE, id, [&](Transaction& transaction) {
    return checkSet(transaction, name, value, valid);
  });
}

gboolean value_object_set(ValueObject* obj, guint32 id, const char* name, const char* value,
                          GError** error) {
  return inTransaction({__func__, obj, error}, METHOD_SET, id, [&](Transaction& transaction) {
    return transaction.set(name, value, false);
  });
}

gboolean value_object_set_status(ValueObject* obj, guint32 id, const char* name, const char* value,
                                 GError** error) {
  return inTransaction(
      {__func__, obj, error}, METHOD_SET_STATUS, id,
      [&](Transaction& transaction) { return transaction.set(name, value, true); });
}

gboolean value_object_set_bulk(ValueObject* obj, guint32 id, char** names, char** values,
                               GError** error) {
  return inTransaction({__func__, obj, error}, METHOD_SET, id, [&](Transaction& transaction) {
    return setTexts(transaction, names, values, false);
  });
}

gboolean value_object_set_status_bulk(ValueObject* obj, guint32 id, char** names, char** values,
                                      GError** error) {
  return inTransaction(
      {__func__, obj, error}, METHOD_SET_STATUS, id,
      [&](Transaction& transaction) { return setTexts(transaction, names, values, true); });
}

gboolean value_object_reset(ValueObject* obj, guint32 id, const char* name, GError** error) {
  return inTransaction({__func__, obj, error}, METHOD_RESET, id,
                       [&](Transaction& transaction) { return transaction.reset(name, false); });
}

gboolean value_object_reset_status(ValueObject* obj, guint32 id, const char* name, GError** error) {
  return inTransaction({__func__, obj, error}, METHOD_RESET_STATUS, id,
                       [&](Transaction& transaction) { return transaction.reset(name, true); });
}

gboolean value_object_reset_bulk(ValueObject* obj, guint32 id, char** names, GError** error) {
  return inTransaction({__func__, obj, error}, METHOD_RESET, id, [&](Transaction& transaction) {
    return resetAll(transaction, names, false);
  });
}

gboolean value_object_reset_status_bulk(ValueObject* obj, guint32 id, char** names,
                                        GError** error) {
  return inTransaction(
      {__func__, obj, error}, METHOD_RESET_STATUS, id,
      [&](Transaction& transaction) { return resetAll(transaction, names, true); });
}

gboolean value_object_commit(ValueObject* obj, guint32 id, GError** error) {
  return inTransaction({__func__, obj, error}, METHOD_COMMIT, id, [&](Transaction& transaction) {
    return commitAndPublish(transaction, obj);
  });
}

gboolean value_object_end(ValueObject* obj, guint32 id, GError** error) {
  return serve({__func__, obj, error}, METHOD_END, [&] {
    const int result = ServiceState::current().endTransaction(id);
    returnSpareMemorySoon();
    return finishMethod(error, METHOD_END, result == 0 ? 0 : UNKNOWN_TRANSACTION);
  });
}

gboolean value_object_single_get(ValueObject* obj, const char* name, char** value, GError** error) {
  return inOwnTransaction({__func__, obj, error}, METHOD_GET, [&](Transaction& transaction) {
    return getText(transaction, name, value);
  });
}

gboolean value_object_single_get_bulk(ValueObject* obj, guint32 count, char** names, char*** values,
                                      GError** error) {
  return inOwnTransaction({__func__, obj, error}, METHOD_GET_BULK, [&](Transaction& transaction) {
    return getTexts(transaction, count, names, values);
  });
}

gboolean value_object_single_is_valid(ValueObject* obj, const char* name, const char* value,
                                      gboolean* valid, GError** error) {
  return inOwnTransaction({__func__, obj, error}, METHOD_VALIDATE, [&](Transaction& transaction) {
    return validate(transaction, name, value, valid);
  });
}

gboolean value_object_single_check_set(ValueObject* obj, const char* name, const char* value,
                                       gboolean* valid, GError** error) {
  return inOwnTransaction({__func__, obj, error}, METHOD_VALIDATE, [&](Transaction& transaction) {
    return checkSet(transaction, name, value, valid);
  });
}

gboolean value_object_single_set(ValueObject* obj, const char* name, const char* value,
                                 GError** error) {
  return andCommit({__func__, obj, error}, METHOD_SET,
                   [&](Transaction& transaction) { return transaction.set(name, value, false); });
}

gboolean value_object_single_set_status(ValueObject* obj, const char* name, const char* value,
                                        GError** error) {
  return andCommit({__func__, obj, error}, METHOD_SET_STATUS,
                   [&](Transaction& transaction) { return transaction.set(name, value, true); });
}

gboolean value_object_single_set_bulk(ValueObject* obj, char** names, char** values,
                                      GError** error) {
  return andCommit({__func__, obj, error}, METHOD_SET, [&](Transaction& transaction) {
    return setTexts(transaction, names, values, false);
  });
}

gboolean value_object_single_set_status_bulk(ValueObject* obj, char** names, char** values,
                                             GError** error) {
  return andCommit({__func__, obj, error}, METHOD_SET_STATUS, [&](Transaction& transaction) {
    return setTexts(transaction, names, values, true);
  });
}

gboolean value_object_single_reset(ValueObject* obj, const char* name, GError** error) {
  return andCommit({__func__, obj, error}, METHOD_RESET,
                   [&](Transaction& transaction) { return transaction.reset(name, false); });
}

gboolean value_object_single_reset_status(ValueObject* obj, const char* name, GError** error) {
  return andCommit({__func__, obj, error}, METHOD_RESET_STATUS,
                   [&](Transaction& transaction) { return transaction.reset(name, true); });
}

gboolean value_object_single_reset_bulk(ValueObject* obj, char** names, GError** error) {
  return andCommit({__func__, obj, error}, METHOD_RESET,
                   [&](Transaction& transaction) { return resetAll(transaction, names, false); });
}

gboolean value_object_single_reset_status_bulk(ValueObject* obj, char** names, GError** error) {
  return andCommit({__func__, obj, error}, METHOD_RESET_STATUS,
                   [&](Transaction& transaction) { return resetAll(transaction, names, true); });
}

gboolean value_object_get_deps(ValueObject* obj, const char* name, char*** deps, GError** error) {
  return serve({__func__, obj, error}, METHOD_GET_DEPS, [&] {
    const int result = getDependencies(ServiceState::current().database(), name, deps);
    return finishMethod(error, METHOD_GET_DEPS, result);
  });
}

gboolean value_object_get_range(ValueObject* obj, guint32 id, const char* name, char*** texts,
                                GPtrArray** spans, GError** error) {
  return inTransaction({__func__, obj, error}, METHOD_GET_RANGE, id, [&](Transaction& transaction) {
    return getRange(transaction, name, texts, spans);
  });
}

gboolean value_object_get_range_bulk(ValueObject* obj, guint32 id, char** names, GPtrArray** texts,
                                     GPtrArray** spans, GError** error) {
  return inTransaction({__func__, obj, error}, METHOD_GET_RANGE, id, [&](Transaction& transaction) {
    return getRanges(transaction, names, texts, spans);
  });
}

gboolean value_object_get_parm_idx(ValueObject* obj, guint32 id, const char* name, char*** indices,
                                   GError** error) {
  return inTransaction(
      {__func__, obj, error}, METHOD_GET_PARM_INDEX, id,
      [&](Transaction& transaction) { return getParmIndices(transaction, name, indices); });
}

gboolean value_object_get_idx_range(ValueObject* obj, guint32 id, const char* name, char*** texts,
                                    GPtrArray** spans, GError** error) {
  return inTransaction(
      {__func__, obj, error}, METHOD_GET_INDEX_RANGE, id,
      [&](Transaction& transaction) { return getIndexRange(transaction, name, texts, spans); });
}

// Holds no lock, as it frees the lock; no other thread could be serving.
gboolean value_object_die(ValueObject* obj, GError** /*error*/) {
  assertNotNull(obj, "obj != NULL", __func__);
  ServiceState::current().stop();
  return TRUE;
}
