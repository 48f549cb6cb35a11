// Classification: what of an expression is known when it is built, from the constants alone.
//
// With the command-line constants LIMIT = 16 and X = 0, and the parameter mode:
//
//   expression          as a value            as a condition
//   LIMIT / 4 + 1       DECIDED, 5            CONDITION_ALWAYS
//   mode == LIMIT       RUN_TIME              CONDITION_RUN_TIME
//   mode && X           RUN_TIME              CONDITION_NEVER
//   1 / 0               LEFT_OUT              CONDITION_LEFT_OUT
//
// Whether a command-line constant is among the names matters for reports: a statement that a
// constant switches off belongs to another product variant, and is no mistake.
#pragma once

#include "deflang/expression/program.h"
#include "deflang/expression/token.h"
#include "sw/parm/build/definition_draft.h"

/// When an expression gets its value.
enum Decision {
  DECIDED,   ///< now, and for good
  RUN_TIME,  ///< in each situation anew
  LEFT_OUT,  ///< never: it is malformed, or has no result; it has been reported as an error
};

/// A classified value.
struct Classification {
  Decision decision;
  Value value = {};            ///< of a decided expression
  bool namesConstant = false;  ///< whether a command-line constant is among its names
  Compiled compiled = {};      ///< of a run-time expression
};

/// Evaluates the value of a default or of a range item with the command-line constants as the only
/// variables. An expression with any other name is RUN_TIME, also where the constants would decide
/// alone: a value is judged when it is asked for. An empty expression is malformed. The names
/// become variables of the definition only when DefinitionDraft::keep() takes the result.
Classification classifyValue(const Expression& expression, DefinitionDraft& draft);

/// When a condition is true. Where the constants decide it alone, it does not wait for the other
/// names.
enum ConditionKind {
  CONDITION_ALWAYS,    ///< constantly a number other than 0, or a text that is not empty
  CONDITION_NEVER,     ///< constantly 0 or the empty text
  CONDITION_RUN_TIME,  ///< judged in each situation anew
  CONDITION_LEFT_OUT,  ///< it cannot be evaluated; it has been reported as an error
};

/// A classified condition.
struct Condition {
  ConditionKind kind;
  /// Whether a command-line constant is among its names; it then tells product variants apart.
  bool namesConstant = false;
  Compiled compiled = {};  ///< of a run-time condition
};

/// Classifies the condition of a control statement (ctrlRO, ctrlValid), where an empty one is an
/// error.
Condition classifyControl(const Expression& condition, DefinitionDraft& draft);

/// Classifies the condition of any other statement, where an empty one is CONDITION_ALWAYS.
Condition classifyCondition(const Expression& condition, DefinitionDraft& draft);
