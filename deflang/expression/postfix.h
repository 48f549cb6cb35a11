// Postfix order: the check of an expression, and its tokens in the order of evaluation.
#pragma once

#include <vector>

#include "deflang/expression/token.h"

/// Brings the operands and operators of `expression` into postfix order, by precedence and from
/// left to right; `order` points to its tokens. Operands are counted, not paired with their
/// operators: "1 2 +" is as good as "1 + 2".
/// Returns 0 when the expression is well formed, -1 when it is empty, otherwise the position (from
/// 1) of the first token at which it fails; `order` is then of no use.
int postfixOrder(const Expression& expression, std::vector<const Token*>& order);
