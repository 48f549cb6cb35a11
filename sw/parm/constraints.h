// Constraints: the rules that judge and correct a parameter's values in place of its bounds.
#pragma once

#include <string>

#include "deflang/expression/variables.h"
#include "sw/parm/parm_def.h"
#include "sw/parm/present_bounds.h"

/// The rules of one parameter in one situation with its index values bound.
class Constraints {
 public:
  Constraints(const ParmDef& parm, const Situation& situation);

  /// Whether any rule's condition is true, the value under test being unknown, or a run-time range
  /// has its values: only then do the rules decide, otherwise the bounds.
  [[nodiscard]] bool apply() const;
  /// Corrects `value` by the constraint rules in order, then by the run-time ranges, whose
  /// correction needs no second look. Returns 0; 1 when a rule still fails after the corrections;
  /// 2 when a correction gave no value, and `value` is empty.
  int correct(std::string& value) const;

 private:
  [[nodiscard]] int correctByRules(std::string& value) const;

  const ParmDef& parm_;
  const Situation& situation_;
  PresentBounds ranges_;
};
