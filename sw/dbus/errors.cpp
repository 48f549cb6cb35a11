#include "sw/dbus/errors.h"

#include <new>

#include "base/system_log.h"
#include "base/work.h"
#include "database/commit.h"
#include "database/dependencies.h"
#include "database/index_query.h"
#include "database/range_query.h"
#include "database/transaction.h"

namespace {

const char* familyName(MethodFamily family) {
  static const char* const NAMES[] = {"Start",
                                      "End",
                                      "Get",
                                      "Get bulk",
                                      "Validate",
                                      "Set",
                                      "Set status",
                                      "Reset",
                                      "Reset status",
                                      "Commit",
                                      "Get deps",
                                      "Get range",
                                      "Get parm index",
                                      "Get index range"};
  return NAMES[family];
}

struct Cause {
  MethodFamily family;
  int result;
  const char* text;
};

constexpr Cause CAUSES[] = {
    {METHOD_SET, STAGE_INVALID_NAME, "parameter name is invalid"},
    {METHOD_SET, STAGE_INVALID_VALUE, "parameter value is invalid"},
    {METHOD_SET_STATUS, STAGE_INVALID_NAME, "parameter name is invalid"},
    {METHOD_SET_STATUS, STAGE_INVALID_VALUE, "parameter value is invalid"},
    {METHOD_RESET, STAGE_INVALID_NAME, "parameter name is invalid"},
    {METHOD_RESET_STATUS, STAGE_INVALID_NAME, "parameter name is invalid"},
    {METHOD_COMMIT, -1, "parameter value is invalid"},
    {METHOD_COMMIT, COMMIT_INVALID_VALUE, "parameter definition is invalid"},
    {METHOD_COMMIT, COMMIT_INVALID_INDEX, "parameter index is invalid"},
    {METHOD_GET_DEPS, DEPENDENCIES_NO_PARAMETER, "of invalid parameter name"},
    {METHOD_GET_DEPS, DEPENDENCIES_INVALID_INDEX, "of invalid parameter index"},
    {METHOD_GET_PARM_INDEX, PARAMETER_NOT_FOUND, "parm not found"},
    {METHOD_GET_INDEX_RANGE, INDEX_RANGE_NO_INDEX, "index not found"},
    {METHOD_GET_INDEX_RANGE, INDEX_RANGE_NOT_AVAILABLE, "index is not valid"},
};

// The end of the message, after "failed because".
const char* cause(MethodFamily family, int result) {
  if (result == UNKNOWN_TRANSACTION) return "of invalid transaction id";
  if (result == OUT_OF_MEMORY) return "of an \"out of memory\" condition";
  for (const Cause& c : CAUSES) {
    if (c.family == family && c.result == result) return c.text;
  }
  return family == METHOD_GET_DEPS ? "of unknown error" : "of internal error";
}

bool isOfBounds(MethodFamily family, int result) {
  return family == METHOD_GET_RANGE && result != UNKNOWN_TRANSACTION && result != RANGE_TOO_LARGE &&
         result != INTERNAL_ERROR;
}

}  // namespace

char* newErrorText(MethodFamily family, int result) noexcept {
  const char* name = familyName(family);
  if (isOfBounds(family, result)) {
    return g_strdup_printf("dbus_tavrel_transaction: %s failed because of invalid bounds (%d)",
                           name, result);
  }
  return g_strdup_printf("dbus_tavrel_transaction: %s failed because %s", name,
                         cause(family, result));
}

gboolean finishMethod(GError** error, MethodFamily family, int result) noexcept {
  if (result == 0) return TRUE;
  if (error != nullptr && *error == nullptr) {
    const GQuark domain = g_quark_from_static_string("dbus_tavrel_transaction");
    char* text = newErrorText(family, result);
    g_set_error_literal(error, domain, 0, text);
    g_free(text);
  }
  return FALSE;
}

void logExceededWork() noexcept {
  try {
    logError(Work::exceededText());
  } catch (const std::bad_alloc&) {
    // The line is lost; the client still gets its error.
  }
}
