#include "check/proof/questions.h"

namespace {

// One kind of statement that has conditions.
struct ConditionKind {
  std::vector<CompiledStatement> Subject::*statements;
  bool seesIndices;
  const char* neverTrue;   // what comes of a condition that is never true
  const char* alwaysTrue;  // what comes of one that always is
};

constexpr ConditionKind KINDS[] = {
    {&Subject::rangeValid, true, "so this range never counts", "so it could be left out"},
    {&Subject::rangeDoc, true, "so this range is never told", "so it could be left out"},
    {&Subject::ctrlRO, true, "so it never makes anything read-only",
     "so nothing but a forced write changes the value"},
    {&Subject::ctrlValid, false, "so the definition is never available", "so it could be left out"},
    {&Subject::defaults, true, "so this default never counts", "so it could be left out"},
};

bool dependsOnParameters(const CompiledExpression& expression) {
  return std::any_of(expression.sources.begin(), expression.sources.end(),
                     [](const VariableSource& source) {
                       return source.parm != nullptr && !source.parm->sources.empty();
                     });
}

void askCondition(Proof& proof, const Subject& subject, const ConditionKind& kind,
                  const CompiledStatement& statement, Explained& explained) {
  const CompiledExpression& condition = *statement.condition;
  if (condition.sources.empty()) return;  // the builder tells of constants
  if (explained.explains(statement)) return;
  const TextPlace at = placeOf(condition.expression);
  const Goal isTrue{&subject, {{{&condition, WANT_TRUE}}}, kind.seesIndices};
  if (proof.isImpossible(isTrue, ANY_VARIANT)) {
    explained.dead.insert(&statement);
    proof.add({"never-true", at, std::string("this condition is never true, ") + kind.neverTrue});
    return;
  }
  const Goal isUntrue{&subject, {{{&condition, WANT_UNTRUE}}}, kind.seesIndices};
  if (proof.isImpossible(isUntrue, ANY_VARIANT)) {
    explained.told.insert(&statement);
    proof.add(
        {"always-true", at, std::string("this condition is always true, ") + kind.alwaysTrue});
    return;
  }
  if (!dependsOnParameters(condition) || proof.isImpossible(isTrue)) return;
  const HealthyResult settled = findHealthy(isTrue, proof.text(), proof.domains());
  if (settled.verdict == VERDICT_IMPOSSIBLE) {
    explained.dead.insert(&statement);
    proof.add({"never-true", at,
               std::string("this condition is never true once the device has settled, ") +
                   kind.neverTrue});
  }
}

}  // namespace

void askConditions(Proof& proof, Explained& explained) {
  for (const Subject& subject : proof.text().subjects()) {
    for (const ConditionKind& kind : KINDS) {
      for (const CompiledStatement& statement : subject.*kind.statements) {
        if (statement.condition) askCondition(proof, subject, kind, statement, explained);
      }
    }
  }
}
