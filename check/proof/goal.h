// Goals: what is asked of expressions, all at once, in one situation.
#pragma once

#include <vector>

#include "check/proof/abstract_value.h"
#include "check/proof/compiled_text.h"

/// What the result of an expression should be.
enum WantedResult {
  WANT_TRUE,                 ///< a number other than 0, or a text that is not empty
  WANT_UNTRUE,               ///< anything else, or missing
  WANT_MISSING,              ///< none: undefined, or an operator without a result
  WANT_TEXT,                 ///< a text that is no number
  WANT_ABOVE,                ///< a number that is more than that of another expression
  WANT_SUM_OVERFLOW,         ///< a number whose sum with the other one passes 32 bits
  WANT_DIFFERENCE_OVERFLOW,  ///< a number whose difference to the other one does
  WANT_PRODUCT_OVERFLOW,     ///< a number whose product with the other one does
};

/// One wish about one expression.
struct Wish {
  const CompiledExpression* expression;
  WantedResult result;
  const CompiledExpression* other = nullptr;  ///< from WANT_ABOVE on
};

/// Whether a wish from WANT_ABOVE on comes true of two numbers. If it does anywhere in a rectangle
/// of numbers, it does at a corner.
bool comesTrue(WantedResult wanted, int64_t number, int64_t other);

/// Whether a wish may come true where expressions may have the values that `evaluate(expression)`
/// gives.
template <typename Evaluate>
bool mayComeTrue(const Wish& wish, const Evaluate& evaluate) {
  const AbstractValue value = evaluate(*wish.expression);
  switch (wish.result) {
    case WANT_TRUE:
      return value.mayBeTrue();
    case WANT_UNTRUE:
      return value.mayBeUntrue();
    case WANT_MISSING:
      return value.mayBeMissing;
    case WANT_TEXT:
      return value.mayBeText();
    default: {
      const AbstractValue other = evaluate(*wish.other);
      return value.mayBeNumber && other.mayBeNumber &&
             (comesTrue(wish.result, value.low, other.low) ||
              comesTrue(wish.result, value.low, other.high) ||
              comesTrue(wish.result, value.high, other.low) ||
              comesTrue(wish.result, value.high, other.high));
    }
  }
}

/// Calls `visit` with each expression of a wish.
template <typename Visit>
void forEachExpression(const Wish& wish, const Visit& visit) {
  visit(*wish.expression);
  if (wish.other != nullptr) visit(*wish.other);
}

/// Wishes of which one has to come true.
using Clause = std::vector<Wish>;

/// That a statement does not count.
Clause passedOver(const CompiledStatement& statement);
/// Likewise of a default, which does not count either where its value cannot be worked out.
Clause passedOverDefault(const CompiledStatement& statement);

/// Clauses that all have to hold in one situation of one definition.
struct Goal {
  const Subject* subject;
  std::vector<Clause> clauses = {};
  /// Whether the expressions see the values of the parameter's indices: its own ctrlValid do not.
  bool seesIndices = true;
  /// Whether more is asked of the situation than the clauses say, which depends on the ranges of
  /// the definition.
  bool dependsOnRanges = false;
};

/// Adds to a goal that its subject is there.
void requirePresence(Goal& goal);

/// Whether a wish comes true. `evaluate(expression)` gives the value of an expression in the
/// situation.
template <typename Evaluate>
bool comesTrue(const Wish& wish, const Evaluate& evaluate) {
  const Value value = evaluate(*wish.expression);
  switch (wish.result) {
    case WANT_TRUE:
      return value.isTrue();
    case WANT_UNTRUE:
      return !value.isTrue();
    case WANT_MISSING:
      return !value.valid();
    case WANT_TEXT:
      return value.valid() && !value.isNumber();
    default: {
      const Value other = evaluate(*wish.other);
      return value.isNumber() && other.isNumber() &&
             comesTrue(wish.result, value.number, other.number);
    }
  }
}

/// Whether all clauses of a goal may hold, each for itself, where each variable may be what
/// `valueOf` says of its source.
bool mayHold(const Goal& goal, const std::function<AbstractValue(const VariableSource&)>& valueOf);
