#include "sw/dbus/errors.h"

#include <map>
#include <utility>

#include "database/commit.h"
#include "database/dependencies.h"
#include "database/index_query.h"
#include "database/transaction.h"

namespace {

const char* familyName(methodFamily_t family) {
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

// What stands after "failed because".
std::string cause(methodFamily_t family, int result) {
  static const std::map<std::pair<methodFamily_t, int>, const char*> CAUSES = {
      {{METHOD_SET, STAGE_INVALID_NAME}, "parameter name is invalid"},
      {{METHOD_SET, STAGE_INVALID_VALUE}, "parameter value is invalid"},
      {{METHOD_SET_STATUS, STAGE_INVALID_NAME}, "parameter name is invalid"},
      {{METHOD_SET_STATUS, STAGE_INVALID_VALUE}, "parameter value is invalid"},
      {{METHOD_RESET, STAGE_INVALID_NAME}, "parameter name is invalid"},
      {{METHOD_RESET_STATUS, STAGE_INVALID_NAME}, "parameter name is invalid"},
      {{METHOD_COMMIT, -1}, "parameter value is invalid"},
      {{METHOD_COMMIT, COMMIT_INVALID_VALUE}, "parameter definition is invalid"},
      {{METHOD_COMMIT, COMMIT_INVALID_INDEX}, "parameter index is invalid"},
      {{METHOD_GET_DEPS, DEPENDENCIES_NO_PARAMETER}, "of invalid parameter name"},
      {{METHOD_GET_DEPS, DEPENDENCIES_INVALID_INDEX}, "of invalid parameter index"},
      {{METHOD_GET_PARM_INDEX, PARAMETER_NOT_FOUND}, "parm not found"},
      {{METHOD_GET_INDEX_RANGE, INDEX_RANGE_NO_INDEX}, "index not found"},
      {{METHOD_GET_INDEX_RANGE, INDEX_RANGE_NOT_VALID}, "index is not valid"},
  };
  if (result == UNKNOWN_TRANSACTION) return "of invalid transaction id";
  if (result == OUT_OF_MEMORY) return "of an \"out of memory\" condition";
  const auto found = CAUSES.find({family, result});
  if (found != CAUSES.end()) return found->second;
  if (family == METHOD_GET_DEPS) return "of unknown error";
  if (family == METHOD_GET_RANGE && result != INTERNAL_ERROR) {
    return "of invalid bounds (" + std::to_string(result) + ")";
  }
  return "of internal error";
}

}  // namespace

std::string errorText(methodFamily_t family, int result) {
  return std::string("dbus_tavrel_transaction: ") + familyName(family) + " failed because " +
         cause(family, result);
}

gboolean finishMethod(GError** error, methodFamily_t family, int result) {
  if (result == 0) return TRUE;
  if (error != nullptr && *error == nullptr) {
    const GQuark domain = g_quark_from_static_string("dbus_tavrel_transaction");
    g_set_error_literal(error, domain, 0, errorText(family, result).c_str());
  }
  return FALSE;
}
