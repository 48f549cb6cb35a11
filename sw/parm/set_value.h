// Setting a value: every value that enters a parameter is checked, corrected and stored here.
#pragma once

#include <string>

#include "deflang/expression/variables.h"
#include "sw/parm/index_tuple.h"
#include "sw/parm/parm_def.h"
#include "sw/parm/present_index.h"

/// How a value is set.
struct setMode_t {
  bool force = false;              ///< the read-only conditions are not asked
  bool dryRun = false;             ///< nothing is stored
  bool quietIndices = false;       ///< a refusal because of the indices is not logged
  CommittedValue* held = nullptr;  ///< where the instance's value is, if that is known
};

/// Results of setValue. After a refusal other than SET_RULE_FAILS the value is empty.
enum setResult_t : int {
  SET_STORED = 0,  ///< stored, or in a dry run acceptable; the value as stored
  /// Not stored: the parameter can never be written, is not valid, or is read-only and not forced.
  /// A "rostrict" parameter also answers this when it was stored; mode and value tell them apart.
  SET_NOT_STORED = 1,
  SET_RULE_FAILS = -1,     ///< a constraint rule still fails; the value as last corrected
  SET_INVALID_VALUE = -2,  ///< a correction gave no value, or the base bounds refuse the value
  SET_INVALID_INDEX = -3,  ///< an index is not valid, or its value, or their number
};

/// What setValue did, where its result alone does not tell.
struct setOutcome_t {
  int result;                      ///< a setResult_t
  bool stored;                     ///< the value was accepted and, but for a dry run, stored
  CommittedValue* held = nullptr;  ///< where it was stored
};

/// Checks `value` for the instance `indices` in a situation, corrects and stores it. `situation` is
/// the call's own; the index values are bound in it here. `present` gives the parameter's indices
/// as they are for the instance.
setOutcome_t setValue(ParmDef& parm, std::string& value, const IndexTuple& indices,
                      Situation situation, PresentIndices& present, setMode_t mode);
