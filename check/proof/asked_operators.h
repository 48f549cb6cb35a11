// Asked operators: the operators of an expression one by one, where a question is about what one of
// them gives.
#pragma once

#include <optional>
#include <vector>

#include "check/proof/goal.h"
#include "check/proof/proof.h"
#include "check/proof/reader.h"

/// An operator with what it is applied to.
struct AskedOperator {
  int32_t code;
  CompiledExpression left;
  CompiledExpression right;
  TextPlace at;  ///< with both sides
};

/// The operators of `expression` of which `isAsked(code)` is true, each behind those of its sides.
/// None of an expression that is too long to ask them one by one.
std::vector<AskedOperator> operatorsOf(const CompiledText& text, const Expression& expression,
                                       bool (*isAsked)(int32_t code));

/// What makes a number of `code` pass 32 bits; no value for an operator that never does.
std::optional<WantedResult> overflowOf(int32_t code);

/// Whether the operator divides.
bool divides(int32_t code);

/// The value of `expression` for `reader` where parameters hold the values of `witness`, and all
/// others are unset.
Value valueIn(const NamedValues& witness, const Reader& reader,
              const CompiledExpression& expression);
