// Postfix order: the check of an expression, and its tokens in the order of evaluation.
#pragma once

#include <vector>

#include "deflang/expression/token.h"

/// Brings the operands and operators of `expression` into postfix order, by precedence and from
/// left to right; parentheses are left out. What `order` held is replaced by pointers to the tokens
/// of `expression`, valid as long as these.
///
///   1 + 2 * 3   becomes   1 2 3 * +
///   1 - 2 - 3   becomes   1 2 - 3 -
///   1 2 +       is as good as 1 + 2: operands are counted, not paired with their operators
///   (-3)        fails at token 4: a sign is an operator behind "(", and lacks its left side
///
/// Returns 0 when the expression is well formed, -1 when it is empty, otherwise the number (from 1)
/// of the token at which the fault shows; `order` is then of no use. Takes linear time; the depth
/// has no limit. Raises std::bad_alloc where memory is exhausted.
int postfixOrder(const Expression& expression, std::vector<const Token*>& order);
