// Classification: what of an expression is known when it is built, from the constants alone.
#pragma once

#include "deflang/expression/program.h"
#include "deflang/expression/token.h"
#include "sw/parm/build/definition_draft.h"

/// When an expression gets its value.
enum Decision {
  DECIDED,   ///< now, and for good
  RUN_TIME,  ///< in each situation anew
  LEFT_OUT,  ///< never: it is no expression, or has no result; reported as an error
};

struct Classification {
  Decision decision;
  Value value = {};            ///< of a decided expression
  bool namesConstant = false;  ///< whether a command-line constant is among its names
  Compiled compiled = {};      ///< of a run-time expression
};

/// Evaluates the value of a default or of a range item with the command-line constants as the only
/// variables. One that has other names is a run-time expression, whatever they leave open: a value
/// is judged when it is asked for. The names stay out of the definition.
Classification classifyValue(const Expression& expression, DefinitionDraft& draft);

/// When a condition is true. Where the constants decide it alone, it does not wait for the other
/// names.
enum ConditionKind {
  CONDITION_ALWAYS,
  CONDITION_NEVER,
  CONDITION_RUN_TIME,
  CONDITION_LEFT_OUT,  ///< it cannot be evaluated; reported as an error
};

struct Condition {
  ConditionKind kind;
  /// Whether a command-line constant is among its names; it then tells product variants apart.
  bool namesConstant = false;
  Compiled compiled = {};  ///< of a run-time condition
};

/// Classifies the condition of a control statement; an empty one is an error there.
Condition classifyControl(const Expression& condition, DefinitionDraft& draft);

/// Classifies the condition of any other statement. An empty one is always true.
Condition classifyCondition(const Expression& condition, DefinitionDraft& draft);
