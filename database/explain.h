// Explanations: why an instance is as it is, in the situation that a transaction sees.
//
// An explanation answers with the engine's own functions and adds the statements that decided. It
// is made on demand: nothing that serves calls keeps more than the lines of the statements.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "database/staged_values.h"
#include "sw/parm/reasons.h"
#include "sw/parm/set_value.h"

/// What an instance is just now, and why.
struct Explanation {
  bool exists = false;  ///< it is available, and its indices are and take their values
  /// Where it exists all conditions that make it so; else what keeps it away: a condition of its
  /// own, or a condition or the bounds of the first index that refuses. Bounds name first the
  /// index with the value that they refuse.
  std::vector<Reason> existence;
  std::string refusingIndex;  ///< the name of that index; empty where none refuses

  bool isReadOnly = false;       ///< a write that is not forced is refused
  std::vector<Reason> readOnly;  ///< the condition that is true, or all that are not

  bool takesAny = true;           ///< of takesAnyValue()
  std::vector<Reason> colliding;  ///< where it takes none: the bounds that share no value

  int rangeResult = 0;          ///< of ParmDef::range()
  BoundsParm range;             ///< that clients are told
  std::optional<Reason> limit;  ///< nullopt where every value is allowed

  std::string defaultValue;              ///< empty where there is none
  std::optional<Reason> defaultDecider;  ///< nullopt where there is none
};

/// What a value would become.
struct ValueExplanation {
  SetCode code = SET_STORED;  ///< of a forced write, or of one that is not where it is read-only
  std::string value;          ///< as it would be stored
  ValueReasons reasons;       ///< empty where the instance does not exist
};

/// Results of explain() and explainValue().
enum ExplainResult : int {
  EXPLAIN_DONE = 0,
  EXPLAIN_INVALID_NAME = 1,  ///< no such parameter, or not as many index values as indices
};

/// Explains the instance `name` with the staged values, and where nothing is staged the committed
/// ones: as they are, not as a commit would leave them. Writes nothing to the system log. Returns
/// an ExplainResult. Counts the work, and raises WorkExceeded; where memory is exhausted,
/// std::bad_alloc.
int explain(Database& database, const StagedValues& staged, std::string_view name,
            Explanation& out);

/// Explains what becomes of `value` for the instance `name` when it is written now; `force` as in
/// Transaction::set(). As explain() otherwise.
int explainValue(Database& database, const StagedValues& staged, std::string_view name,
                 const std::string& value, bool force, ValueExplanation& out);
