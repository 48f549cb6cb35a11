#include "check/proof/asked_operators.h"
#include "check/proof/questions.h"

namespace {

bool canOverflow(int32_t code) { return overflowOf(code).has_value(); }

// Asks the sums and products of one expression, in situations in which `counts` holds.
void askExpression(Proof& proof, const Goal& counts, const Expression& expression) {
  for (const AskedOperator& one : operatorsOf(proof.text(), expression, canOverflow)) {
    if (one.left.sources.empty() && one.right.sources.empty()) continue;
    // What comes of it may be told there.
    if (proof.found("overflow", one.at) != nullptr) return;
    Goal goal = counts;
    goal.clauses.push_back({{&one.left, *overflowOf(one.code), &one.right}});
    if (proof.addIfHealthy(goal, {"overflow", one.at,
                                  "this can pass what 32 bits hold, and then goes on from the "
                                  "other end"})) {
      return;
    }
  }
}

void askStatements(Proof& proof, const Subject& subject,
                   const std::vector<CompiledStatement>& statements, bool seesIndices,
                   const Explained& explained) {
  for (const CompiledStatement& statement : statements) {
    if (explained.explains(statement) || explained.dead.contains(&statement)) continue;
    const Goal always{&subject, {}, seesIndices};
    Goal counts = always;
    if (statement.condition) {
      askExpression(proof, always, statement.condition->expression);
      counts.clauses.push_back({{&*statement.condition, WANT_TRUE}});
    }
    for (const CompiledItem& item : statement.items) {
      if (item.lower) askExpression(proof, counts, item.lower->expression);
      if (item.upper) askExpression(proof, counts, item.upper->expression);
    }
  }
}

}  // namespace

void askOverflow(Proof& proof, const Explained& explained) {
  proof.forEachSubject([&](const Subject& subject) {
    askStatements(proof, subject, subject.rangeValid, true, explained);
    askStatements(proof, subject, subject.rangeDoc, true, explained);
    askStatements(proof, subject, subject.ctrlRO, true, explained);
    askStatements(proof, subject, subject.ctrlValid, false, explained);
    askStatements(proof, subject, subject.defaults, true, explained);
  });
}
