// Setting a value: every value that enters a parameter is checked, corrected and stored here.
#pragma once

#include <string>

#include "deflang/expression/variables.h"
#include "sw/parm/index_tuple.h"
#include "sw/parm/parm_def.h"
#include "sw/parm/present_index.h"

/// How a value is set.
struct SetOptions {
  bool force = false;         ///< the read-only conditions are not asked
  bool dryRun = false;        ///< nothing is stored: a range query
  bool quietIndices = false;  ///< a refusal because of the indices is not logged
  /// The committed value of the instance where the caller knows it, so that it is not looked for;
  /// else null.
  CommittedValue* held = nullptr;
};

/// What becomes of a value that is set. The negative codes go to the system log as they are.
enum SetCode : int {
  SET_STORED = 0,             ///< stored, or in a dry run acceptable
  SET_NOT_STORED = 1,         ///< never writable, not available, or read-only and not forced
  SET_STORED_UNREPORTED = 2,  ///< as SET_STORED, of a "rostrict" parameter: nobody is told
  SET_RULE_FAILS = -1,        ///< a constraint rule still fails after all corrections
  SET_INVALID_VALUE = -2,     ///< a correction gave no value, or the base bounds refuse the value
  SET_INVALID_INDEX = -3,     ///< an index is not available, or its value, or their number
};

/// Whether the value, as corrected, is one that the parameter takes.
[[nodiscard]] constexpr bool isAccepted(SetCode code) {
  return code == SET_STORED || code == SET_STORED_UNREPORTED;
}

/// What setValue() returns.
struct SetResult {
  SetCode code;
  /// With SET_STORED and SET_STORED_UNREPORTED the value as accepted, with SET_RULE_FAILS as last
  /// corrected, otherwise empty.
  std::string value;
  CommittedValue* held = nullptr;  ///< where the value is stored now; null where it is not
};

/// Checks `value` for the instance `indices` in a situation, corrects and stores it. The steps, of
/// which the first that refuses ends the call:
///
///   1. The parameter is writable at all and its validity conditions are true: else SET_NOT_STORED.
///   2. Each index is available and takes its value, and there are as many values as indices: else
///      SET_INVALID_INDEX.
///   3. No read-only condition is true, or `options.force`: else SET_NOT_STORED.
///   4. The value is corrected, by the constraints where they apply, otherwise by the bounds. With
///      the range 0..9, "15" becomes "9". SET_RULE_FAILS and SET_INVALID_VALUE come from here.
///   5. The value is stored, except in a dry run.
///
/// `situation` is the call's own copy, with a slot for each variable of `parm`. The index values
/// are bound in it in step 2, one by one: each index sees the values before its own, and the
/// validity conditions in step 1 see none. `present` gives the parameter's indices as they are for
/// the instance. The pointer in the result is valid as long as `parm` stays where it is.
///
/// SET_INVALID_INDEX (unless `options.quietIndices`) and SET_INVALID_VALUE write to the system log
/// why. Where memory runs out (std::bad_alloc) or the budget of work is passed (WorkExceeded), the
/// instance holds what it held. The caller counts ParmDef::evaluationWork() first.
SetResult setValue(ParmDef& parm, std::string value, const IndexTuple& indices, Situation situation,
                   PresentIndices& present, SetOptions options);

/// Whether there is a value that a plain set would store, in a situation with the index values of
/// an instance bound: one that may be staged, and that setValue() accepts in step 4. There is none
/// where the conditional bounds that apply share no value with the base bounds. Counts the work.
bool takesAnyValue(const ParmDef& parm, const Situation& situation);
