#include "sw/dbus/errors.h"

#include <gtest/gtest.h>

#include <new>
#include <string>

#include "base/system_log.h"
#include "database/range_query.h"

namespace {

TEST(ErrorText, TellsEachCauseOfEachFamily) {
  struct TextCase {
    MethodFamily family;
    int result;
    const char* text;
  };
  const TextCase cases[] = {
      {METHOD_START, OUT_OF_MEMORY, "Start failed because of an \"out of memory\" condition"},
      {METHOD_END, UNKNOWN_TRANSACTION, "End failed because of invalid transaction id"},
      {METHOD_GET, UNKNOWN_TRANSACTION, "Get failed because of invalid transaction id"},
      {METHOD_GET_BULK, UNKNOWN_TRANSACTION, "Get bulk failed because of invalid transaction id"},
      {METHOD_GET_BULK, INTERNAL_ERROR, "Get bulk failed because of internal error"},
      {METHOD_VALIDATE, UNKNOWN_TRANSACTION, "Validate failed because of invalid transaction id"},
      {METHOD_SET, UNKNOWN_TRANSACTION, "Set failed because of invalid transaction id"},
      {METHOD_SET, 1, "Set failed because parameter name is invalid"},
      {METHOD_SET, 2, "Set failed because parameter value is invalid"},
      {METHOD_SET, 3, "Set failed because of internal error"},
      {METHOD_SET, -1, "Set failed because of internal error"},
      {METHOD_SET_STATUS, UNKNOWN_TRANSACTION,
       "Set status failed because of invalid transaction id"},
      {METHOD_SET_STATUS, 1, "Set status failed because parameter name is invalid"},
      {METHOD_SET_STATUS, 2, "Set status failed because parameter value is invalid"},
      {METHOD_SET_STATUS, 3, "Set status failed because of internal error"},
      {METHOD_RESET, UNKNOWN_TRANSACTION, "Reset failed because of invalid transaction id"},
      {METHOD_RESET, 1, "Reset failed because parameter name is invalid"},
      {METHOD_RESET, 2, "Reset failed because of internal error"},  // a reset brings no value
      {METHOD_RESET_STATUS, UNKNOWN_TRANSACTION,
       "Reset status failed because of invalid transaction id"},
      {METHOD_RESET_STATUS, 1, "Reset status failed because parameter name is invalid"},
      {METHOD_RESET_STATUS, 2, "Reset status failed because of internal error"},
      {METHOD_COMMIT, UNKNOWN_TRANSACTION, "Commit failed because of invalid transaction id"},
      {METHOD_COMMIT, -1, "Commit failed because parameter value is invalid"},
      {METHOD_COMMIT, -2, "Commit failed because parameter definition is invalid"},
      {METHOD_COMMIT, -3, "Commit failed because parameter index is invalid"},
      {METHOD_COMMIT, -4, "Commit failed because of internal error"},
      {METHOD_GET_DEPS, 1, "Get deps failed because of invalid parameter name"},
      {METHOD_GET_DEPS, 2, "Get deps failed because of invalid parameter index"},
      {METHOD_GET_DEPS, 3, "Get deps failed because of unknown error"},
      {METHOD_GET_DEPS, INTERNAL_ERROR, "Get deps failed because of unknown error"},
      {METHOD_GET_RANGE, UNKNOWN_TRANSACTION, "Get range failed because of invalid transaction id"},
      {METHOD_GET_RANGE, 1, "Get range failed because of invalid bounds (1)"},
      {METHOD_GET_RANGE, RANGE_TOO_LARGE, "Get range failed because of internal error"},
      {METHOD_GET_RANGE, -6, "Get range failed because of invalid bounds (-6)"},
      {METHOD_GET_RANGE, INTERNAL_ERROR, "Get range failed because of internal error"},
      {METHOD_GET_PARM_INDEX, UNKNOWN_TRANSACTION,
       "Get parm index failed because of invalid transaction id"},
      {METHOD_GET_PARM_INDEX, PARAMETER_NOT_FOUND, "Get parm index failed because parm not found"},
      {METHOD_GET_INDEX_RANGE, UNKNOWN_TRANSACTION,
       "Get index range failed because of invalid transaction id"},
      {METHOD_GET_INDEX_RANGE, 1, "Get index range failed because index not found"},
      {METHOD_GET_INDEX_RANGE, 2, "Get index range failed because index is not valid"},
  };
  for (const TextCase& c : cases) {
    SCOPED_TRACE(c.text);
    char* text = newErrorText(c.family, c.result);
    EXPECT_EQ(text, std::string("dbus_tavrel_transaction: ") + c.text);
    g_free(text);
  }
}

TEST(FinishMethod, SucceedsWithZero) {
  GError* error = nullptr;
  EXPECT_EQ(finishMethod(&error, METHOD_SET, 0), TRUE);
  EXPECT_EQ(error, nullptr);
}

TEST(LogExceededWork, DoesWithoutTheLineWhereThereIsNoMemory) {
  bool isTold = false;
  const LogRedirection log([&](const std::string& /*line*/) {
    isTold = true;
    throw std::bad_alloc();
  });
  logExceededWork();
  EXPECT_TRUE(isTold);
}

TEST(FinishMethod, KeepsTheFirstError) {
  GError* error = nullptr;
  EXPECT_EQ(finishMethod(&error, METHOD_SET, 1), FALSE);
  EXPECT_EQ(finishMethod(&error, METHOD_COMMIT, -1), FALSE);
  EXPECT_EQ(finishMethod(&error, METHOD_SET, 0), TRUE);
  ASSERT_NE(error, nullptr);
  EXPECT_STREQ(g_quark_to_string(error->domain), "dbus_tavrel_transaction");
  EXPECT_EQ(error->code, 0);
  EXPECT_STREQ(error->message,
               "dbus_tavrel_transaction: Set failed because parameter name is invalid");
  g_error_free(error);
}

TEST(FinishMethod, NeedsNoErrorFromItsCaller) {
  EXPECT_EQ(finishMethod(nullptr, METHOD_SET, 1), FALSE);
}

}  // namespace
