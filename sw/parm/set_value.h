// Setting a value: every value that enters a parameter is checked, corrected and stored here.
#pragma once

#include <string>

#include "deflang/expression/variables.h"
#include "sw/parm/index_tuple.h"
#include "sw/parm/parm_def.h"
#include "sw/parm/present_index.h"

/// How a value is set.
struct SetOptions {
  bool force = false;              ///< the read-only conditions are not asked
  bool dryRun = false;             ///< nothing is stored
  bool quietIndices = false;       ///< a refusal because of the indices is not logged
  CommittedValue* held = nullptr;  ///< where the instance's value is, if that is known
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

struct SetResult {
  SetCode code;
  std::string value;  ///< as accepted, or where a rule fails as last corrected; or empty
  CommittedValue* held = nullptr;  ///< where the value is stored now; null where it is not

  /// Whether the value, as corrected, is one that the parameter takes.
  [[nodiscard]] bool isAccepted() const {
    return code == SET_STORED || code == SET_STORED_UNREPORTED;
  }
};

/// Checks `value` for the instance `indices` in a situation, corrects and stores it. `situation` is
/// the call's own; the index values are bound in it here, one by one, because each index sees those
/// before it and the parameter's own conditions see none. `present` gives the parameter's indices
/// as they are for the instance. A refusal is logged but for the silent codes SET_NOT_STORED and
/// SET_RULE_FAILS. Where memory runs out (std::bad_alloc), the instance holds what it held.
SetResult setValue(ParmDef& parm, std::string value, const IndexTuple& indices, Situation situation,
                   PresentIndices& present, SetOptions options);
