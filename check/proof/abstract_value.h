// Abstract values: what an expression may give in many situations at once.
//
// Evaluating with them is sound, not exact: every value that the engine gives in one of the
// situations is among those said, and some more may be.
#pragma once

#include <functional>

#include "check/proof/compiled_text.h"
#include "check/proof/domain.h"

/// A set of results of an evaluation.
struct AbstractValue {
  bool mayBeMissing = false;  ///< undefined, or without a result
  bool mayBeNumber = false;   ///< one from `low` to `high`
  int32_t low = 0;
  int32_t high = 0;
  /// The texts that it may be; nullopt where it may be any, or is not known.
  std::optional<std::set<std::string>> texts = std::set<std::string>();

  /// Whether it may be a text.
  [[nodiscard]] bool mayBeText() const { return !texts || !texts->empty(); }
  /// Whether it may be true: a number other than 0, or a text that is not empty.
  [[nodiscard]] bool mayBeTrue() const;
  /// Whether it may be something else, or missing.
  [[nodiscard]] bool mayBeUntrue() const;

  void addNumbers(int32_t from, int32_t to);
  bool operator==(const AbstractValue&) const = default;
};

/// What a variable with a value of `domain` may be as an operand.
AbstractValue abstractOf(const Domain& domain);

/// What `expression` may give, where the variable of each source may be what `valueOf` says.
AbstractValue evaluateAbstractly(
    const CompiledExpression& expression,
    const std::function<AbstractValue(const VariableSource&)>& valueOf);
