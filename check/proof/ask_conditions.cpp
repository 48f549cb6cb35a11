#include <span>

#include "check/proof/compared_values.h"
#include "check/proof/questions.h"

namespace {

// One kind of statement that has conditions.
struct ConditionKind {
  std::vector<CompiledStatement> Subject::*statements;
  bool seesIndices;
  const char* neverTrue;         // what comes of a condition that is never true
  const char* alwaysTrue;        // what comes of one that always is
  const char* covers = nullptr;  // likewise where the first that is true counts, and others follow
};

constexpr ConditionKind KINDS[] = {
    {&Subject::rangeValid, true, "so this range never counts", "so it could be left out"},
    {&Subject::rangeDoc, true, "so this range is never told", "so it could be left out",
     "so no other rangeDoc counts"},
    {&Subject::ctrlRO, true, "so it never makes anything read-only",
     "so no client can ever change the value"},
    {&Subject::ctrlValid, false, "so the definition is never available", "so it could be left out"},
    {&Subject::defaults, true, "so this default never counts", "so it could be left out",
     "so no later default counts"},
};

// Whether there are statements that count only where this one does not.
bool isFollowed(const CompiledStatement& statement, const std::vector<CompiledStatement>& all) {
  return std::any_of(all.begin(), all.end(), [&](const CompiledStatement& other) {
    return &other > &statement || !other.condition;
  });
}

bool dependsOnParameters(const CompiledExpression& expression) {
  return std::any_of(expression.sources.begin(), expression.sources.end(),
                     [](const VariableSource& source) {
                       return source.parm != nullptr && !source.parm->sources.empty();
                     });
}

// What was found of the conditions of one definition.
struct FoundConditions {
  struct One {
    const CompiledStatement* statement;
    Finding finding;
    bool isSettled =
        false;  // so only once the device has settled: what names may hold tells nothing
  };
  std::vector<One> never = {};
  std::vector<One> always = {};
};

void askCondition(Proof& proof, const Subject& subject, const ConditionKind& kind,
                  const CompiledStatement& statement, FoundConditions& found) {
  const CompiledExpression& condition = *statement.condition;
  const TextPlace at = placeOf(proof.text().checked().source, condition.expression);
  Finding never{"never-true", at, std::string("this condition is never true, ") + kind.neverTrue};
  const bool covers = kind.covers != nullptr && isFollowed(statement, subject.*kind.statements);
  const Finding always{
      "always-true", at,
      std::string("this condition is always true, ") + (covers ? kind.covers : kind.alwaysTrue)};
  const Goal isTrue{&subject, {{{&condition, WANT_TRUE}}}, kind.seesIndices};
  const Goal isUntrue{&subject, {{{&condition, WANT_UNTRUE}}}, kind.seesIndices};
  Verdict canBeTrue = proof.decide(isTrue, ANY_VARIANT);
  Verdict canBeUntrue = canBeTrue;
  if (canBeTrue != VERDICT_IMPOSSIBLE) canBeUntrue = proof.decide(isUntrue, ANY_VARIANT);
  if (canBeUntrue == VERDICT_UNDECIDED) proof.addUndecided(always);
  if (canBeTrue != VERDICT_IMPOSSIBLE && canBeUntrue == VERDICT_IMPOSSIBLE) {
    found.always.push_back({&statement, always});
    return;
  }
  const bool isSettled = canBeTrue != VERDICT_IMPOSSIBLE && dependsOnParameters(condition) &&
                         !proof.isImpossible(isTrue);
  if (isSettled) {
    canBeTrue = proof.findHealthy(isTrue).atRest();
    never.text =
        std::string("this condition is never true once the device has settled, ") + kind.neverTrue;
  }
  if (canBeTrue == VERDICT_UNDECIDED) proof.addUndecided(never);
  const ParmEntry* const own = kind.statements == &Subject::ctrlValid ? subject.parm : nullptr;
  const bool isNever = canBeTrue == VERDICT_IMPOSSIBLE;
  if (isNever && (isSettled ? proof.readsWhatIsNeverThere(condition, own)
                            : proof.readsWhatIsLeftOut(condition))) {
    return;
  }
  if (isNever) found.never.push_back({&statement, never, isSettled});
}

// Whether `statement` has a true condition wherever those of `others` are untrue, by form alone:
// a < 5 where a >= 5 is untrue.
bool isTrueWithout(Proof& proof, const Subject& subject, const CompiledStatement& statement,
                   std::span<const FoundConditions::One> others) {
  Goal goal{&subject, {{{&*statement.condition, WANT_UNTRUE}}}};
  for (const FoundConditions::One& other : others) {
    goal.clauses.push_back({{&*other.statement->condition, WANT_UNTRUE}});
  }
  return proof.isImpossible(goal, ANY_TEXT, EFFORT_THOROUGH);
}

// The condition that is never true and makes `always` be always true, or null.
FoundConditions::One* causeOf(Proof& proof, const Subject& subject,
                              const FoundConditions::One& always,
                              std::vector<FoundConditions::One>& never) {
  if (never.empty() || isTrueWithout(proof, subject, *always.statement, {})) return nullptr;
  for (FoundConditions::One& one : never) {
    if (isTrueWithout(proof, subject, *always.statement, {&one, 1})) return &one;
  }
  return isTrueWithout(proof, subject, *always.statement, never) ? &never.front() : nullptr;
}

// Adds a finding about a condition, unless it follows from one about a standard in it.
void addExplained(Proof& proof, FoundConditions::One& found) {
  const Expression& condition = found.statement->condition->expression;
  const std::vector<ComparedValue> compared = comparedValues(proof, condition);
  const bool isTold = std::any_of(compared.begin(), compared.end(), [&](const ComparedValue& one) {
    return isToldOfStandard(proof, one);
  });
  if (isTold) return;
  if (found.isSettled) {
    proposeTexts(proof, condition, found.finding);
  } else {
    explainValues(proof, condition, found.finding);
  }
  proof.add(std::move(found.finding));
}

void addFound(Proof& proof, const Subject& subject, FoundConditions& found, Explained& explained) {
  for (FoundConditions::One& always : found.always) {
    explained.told.insert(always.statement);
    FoundConditions::One* const cause = causeOf(proof, subject, always, found.never);
    if (cause == nullptr) {
      addExplained(proof, always);
    } else {
      cause->finding.related.push_back({always.finding.at, "so this one is always true"});
    }
  }
  for (FoundConditions::One& never : found.never) {
    explained.dead.insert(never.statement);
    addExplained(proof, never);
  }
}

}  // namespace

void askConditions(Proof& proof, Explained& explained) {
  proof.forEachSubject([&](const Subject& subject) {
    FoundConditions found;
    for (const ConditionKind& kind : KINDS) {
      for (const CompiledStatement& statement : subject.*kind.statements) {
        const bool isAsked = statement.condition &&
                             !statement.condition->sources.empty() &&  // the builder tells of these
                             !explained.explains(statement) &&
                             !explained.usesMisspelt(*statement.condition);
        if (isAsked) askCondition(proof, subject, kind, statement, found);
      }
    }
    addFound(proof, subject, found, explained);
  });
}
