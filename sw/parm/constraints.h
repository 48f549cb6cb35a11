// Constraints: the rules that judge and correct a parameter's values in place of its bounds.
//
// There are two kinds: constraint rules, and ranges that are computed at run time. No statement of
// a definition text makes a constraint rule (see ConstraintRule), so in the daemon only the
// run-time ranges are at work here, and correct() returns 0.
#pragma once

#include <string>

#include "deflang/expression/variables.h"
#include "sw/parm/parm_def.h"
#include "sw/parm/present_bounds.h"

/// What the rules make of a value.
enum ConstraintsResult : int {
  CONSTRAINTS_MET = 0,   ///< the value is what the rules made of it
  CONSTRAINTS_FAIL = 1,  ///< a rule still fails: as last corrected, and the ranges were not asked
  CONSTRAINTS_NO_VALUE = 2,  ///< a correction gave no value: it is empty
};

/// The rules of one parameter in one situation with its index values bound. setValue() makes one
/// for each value of a parameter that has rules, see ParmDef::hasConstraints():
///
///   const Constraints constraints(parm, situation);
///   if (constraints.apply()) result = constraints.correct(value);  // otherwise the bounds decide
///
/// `parm` and the situation have to outlive it and must not change: the run-time ranges are worked
/// out once, when it is made. They do not read the value under test, so its correction lies in
/// them. Everything here may raise std::bad_alloc or WorkExceeded. Only the work on texts is
/// counted here; ParmDef::evaluationWork() contains the rest.
class Constraints {
 public:
  /// The rules of `parm`; `situation` has a slot for each of its variables.
  Constraints(const ParmDef& parm, const Situation& situation);

  /// Whether the rules decide, and not the bounds: either the condition of a constraint rule is
  /// true, with the value under test still unknown, or a run-time range applies and has its values.
  [[nodiscard]] bool apply() const;
  /// Corrects `value` by the constraint rules in order, each of which sees the corrections before
  /// it, then by the run-time ranges that have values: `value` is translated twice; one that no
  /// range or constant bounds accept becomes the correction by the first that applies. With the
  /// range 20..29, "max" that translates to "99" becomes "29".
  [[nodiscard]] ConstraintsResult correct(std::string& value) const;

 private:
  [[nodiscard]] ConstraintsResult correctByRules(std::string& value) const;

  const ParmDef& parm_;
  const Situation& situation_;
  PresentBounds ranges_;
};
