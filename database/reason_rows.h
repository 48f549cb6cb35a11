// Reason rows: the answers about an instance and the statements behind them, one row for each.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "database/outlook.h"
#include "database/transaction.h"
#include "sw/parm/reasons.h"

/// A question, its answer and one statement that decided. Several statements that decide together
/// are several rows with one question and one answer; where none does, the line is 0.
///
///   question   answer
///   exists     "yes" or "no": whether the instance is there after a commit
///   writable   "yes" or "no": whether that would store any value that is set without force
///   limits     the range as a text, "any" where every value is allowed, "none" where it cannot be
///              worked out: the bounds that collide where they refuse the value, be it one on which
///              the limits depend
///   default    the default, the empty text where there is none
///   value      the value that the transaction sees
struct ReasonRow {
  std::string question;
  std::string answer;
  Reason reason;
};

/// The rows for the instance `name`, in the order of the table, as InstanceStates and queryRange()
/// answer; `outlook` is of `transaction`, and not COMMIT_TOO_LARGE. nullopt where there is no such
/// parameter, or not with so many index values. Counts the work, and raises WorkExceeded, or
/// std::bad_alloc where memory is exhausted.
std::optional<std::vector<ReasonRow>> reasonRows(Transaction& transaction, const Outlook& outlook,
                                                 std::string_view name);
