// The errors of the bus methods: one text for each cause, by which clients tell them apart.
#pragma once

#include <glib.h>

#include <climits>

/// The families of methods whose errors read alike.
enum MethodFamily {
  METHOD_START,
  METHOD_END,
  METHOD_GET,
  METHOD_GET_BULK,
  METHOD_VALIDATE,
  METHOD_SET,
  METHOD_SET_STATUS,
  METHOD_RESET,
  METHOD_RESET_STATUS,
  METHOD_COMMIT,
  METHOD_GET_DEPS,
  METHOD_GET_RANGE,
  METHOD_GET_PARM_INDEX,
  METHOD_GET_INDEX_RANGE,
};

/// Results of methods beside those of the operations that they call, far from them.
constexpr int UNKNOWN_TRANSACTION = INT_MAX;
constexpr int OUT_OF_MEMORY = INT_MAX - 1;  ///< of start alone
constexpr int PARAMETER_NOT_FOUND = INT_MAX - 2;
constexpr int INTERNAL_ERROR = INT_MAX - 3;  ///< also a reply that is too large for a message

/// The message of a result other than 0, allocated by GLib. Raises no exception: it is what becomes
/// of one.
char* newErrorText(MethodFamily family, int result) noexcept;

/// Hands on the result of an operation: TRUE for 0, otherwise FALSE and the error in `error`. Of
/// several errors of one call the first stays.
gboolean finishMethod(GError** error, MethodFamily family, int result) noexcept;

/// Tells the system log where a call passed its budget of work, and how much it wanted.
void logExceededWork() noexcept;
