#include "check/proof/goal.h"

#include <algorithm>

bool comesTrue(WantedResult wanted, int64_t number, int64_t other) {
  const auto overflows = [](int64_t result) {
    return result != static_cast<int64_t>(static_cast<int32_t>(result));
  };
  switch (wanted) {
    case WANT_ABOVE:
      return number > other;
    case WANT_SUM_OVERFLOW:
      return overflows(number + other);
    case WANT_DIFFERENCE_OVERFLOW:
      return overflows(number - other);
    case WANT_PRODUCT_OVERFLOW:
      return overflows(number * other);
    default:
      return false;
  }
}

bool mayHold(const Goal& goal, const std::function<AbstractValue(const VariableSource&)>& valueOf) {
  const auto evaluate = [&](const CompiledExpression& expression) {
    return evaluateAbstractly(expression, valueOf);
  };
  return std::all_of(goal.clauses.begin(), goal.clauses.end(), [&](const Clause& clause) {
    return std::any_of(clause.begin(), clause.end(),
                       [&](const Wish& wish) { return mayComeTrue(wish, evaluate); });
  });
}

Clause passedOver(const CompiledStatement& statement) {
  Clause clause;
  if (statement.condition) clause.push_back({&*statement.condition, WANT_UNTRUE});
  return clause;
}

Clause passedOverDefault(const CompiledStatement& statement) {
  Clause clause = passedOver(statement);
  const CompiledItem& value = statement.items.front();
  if (value.lower && value.lower->program.usesVariables()) {
    clause.push_back({&*value.lower, WANT_MISSING});
  }
  return clause;
}

void requirePresence(Goal& goal) {
  for (const CompiledStatement& control : goal.subject->ctrlValid) {
    if (control.condition) goal.clauses.push_back({{&*control.condition, WANT_TRUE}});
  }
}
