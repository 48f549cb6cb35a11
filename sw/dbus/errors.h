// The errors of the bus methods: one text for each cause, by which clients tell them apart.
//
// Operations give integers; the frame of the methods (method_frame.h) turns them into errors here,
// and nobody else does. org.tavrel.transaction(7) lists the texts.
#pragma once

#include <glib.h>

#include <climits>

/// The families of methods whose errors read alike. The order matters: the names of the families
/// are a table in this order, and keepsMemory() takes METHOD_VALIDATE to METHOD_RESET_STATUS as one
/// run.
enum MethodFamily {
  METHOD_START,
  METHOD_END,
  METHOD_GET,              ///< get, single_get
  METHOD_GET_BULK,         ///< get_bulk, single_get_bulk
  METHOD_VALIDATE,         ///< is_valid, check_set and their single_ forms
  METHOD_SET,              ///< set, set_bulk and their single_ forms
  METHOD_SET_STATUS,       ///< set_status, set_status_bulk and their single_ forms
  METHOD_RESET,            ///< reset, reset_bulk and their single_ forms
  METHOD_RESET_STATUS,     ///< reset_status, reset_status_bulk and their single_ forms
  METHOD_COMMIT,           ///< commit, and the commit of the single_ forms that write
  METHOD_GET_DEPS,         ///< get_deps
  METHOD_GET_RANGE,        ///< get_range, get_range_bulk
  METHOD_GET_PARM_INDEX,   ///< get_parm_idx
  METHOD_GET_INDEX_RANGE,  ///< get_idx_range
};

/// Results of methods beside those of the operations that they call. They are far from those, which
/// are -6 to 3 now, because finishMethod() gets both as one integer.
constexpr int UNKNOWN_TRANSACTION = INT_MAX;      ///< no open transaction has the id
constexpr int OUT_OF_MEMORY = INT_MAX - 1;        ///< of start alone; others: INTERNAL_ERROR
constexpr int PARAMETER_NOT_FOUND = INT_MAX - 2;  ///< of get_parm_idx alone
/// Memory is exhausted, the call has passed its budget of work, or its reply is too large.
constexpr int INTERNAL_ERROR = INT_MAX - 3;

/// The message of a `result` other than 0, for g_free(). For METHOD_GET_RANGE the results
/// of queryRange() read as invalid bounds with their number, but for RANGE_TOO_LARGE. Any other
/// result that has no text in `family` reads as an internal error, of METHOD_GET_DEPS as an unknown
/// one. Raises no exception, as it is called where one has ended; without memory for the text the
/// process ends as in last_words.h.
char* newErrorText(MethodFamily family, int result) noexcept;

/// Hands on the result of an operation: TRUE for 0, otherwise FALSE with a new error in `error`,
/// which the binding library frees. `error` may be null. An error that is already there stays: of
/// several failures of one call the client is told the first.
gboolean finishMethod(GError** error, MethodFamily family, int result) noexcept;

/// Tells the system log which parameter the call was at when it passed its budget of work, and how
/// much it wanted. Where there is no memory for the line, none is written.
void logExceededWork() noexcept;
