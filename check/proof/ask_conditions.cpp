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
  Finding never{"never-true", at, std::string("this condition is never true, ") + kind.neverTrue};
  const Finding always{"always-true", at,
                       std::string("this condition is always true, ") + kind.alwaysTrue};
  const Goal isTrue{&subject, {{{&condition, WANT_TRUE}}}, kind.seesIndices};
  const Goal isUntrue{&subject, {{{&condition, WANT_UNTRUE}}}, kind.seesIndices};
  Verdict canBeTrue = proof.decide(isTrue, ANY_VARIANT);
  Verdict canBeUntrue = canBeTrue;
  if (canBeTrue != VERDICT_IMPOSSIBLE) canBeUntrue = proof.decide(isUntrue, ANY_VARIANT);
  if (canBeUntrue == VERDICT_UNDECIDED) proof.addUndecided(always);
  if (canBeTrue != VERDICT_IMPOSSIBLE && canBeUntrue == VERDICT_IMPOSSIBLE) {
    explained.told.insert(&statement);
    proof.add(always);
    return;
  }
  if (canBeTrue != VERDICT_IMPOSSIBLE && dependsOnParameters(condition) &&
      !proof.isImpossible(isTrue)) {
    canBeTrue = proof.findHealthy(isTrue).verdict;
    never.text =
        std::string("this condition is never true once the device has settled, ") + kind.neverTrue;
  }
  if (canBeTrue == VERDICT_UNDECIDED) proof.addUndecided(never);
  if (canBeTrue != VERDICT_IMPOSSIBLE) return;
  explained.dead.insert(&statement);
  proof.add(never);
}

}  // namespace

void askConditions(Proof& proof, Explained& explained) {
  for (const Subject& subject : proof.subjects()) {
    for (const ConditionKind& kind : KINDS) {
      for (const CompiledStatement& statement : subject.*kind.statements) {
        if (statement.condition) askCondition(proof, subject, kind, statement, explained);
      }
    }
  }
}
