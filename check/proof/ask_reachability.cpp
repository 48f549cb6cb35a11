#include "check/proof/questions.h"

namespace {

// The clauses that make a default or rangeDoc statement the one that is passed over.
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

// The statement that alone covers `statement`, or null.
const CompiledStatement* coverOf(Proof& proof, const Goal& applies,
                                 const std::vector<const CompiledStatement*>& earlier,
                                 Clause (*pass)(const CompiledStatement&)) {
  for (const CompiledStatement* other : earlier) {
    Goal goal = applies;
    goal.clauses.push_back(pass(*other));
    if (proof.isImpossible(goal, ANY_VARIANT)) return other;
  }
  return nullptr;
}

// Whether those before `statement` cover it whatever the definitions say, and not `cover` alone:
// then it is not because `cover` is always true, which has been told.
bool isCoveredByForm(Proof& proof, const Subject& subject,
                     const std::vector<const CompiledStatement*>& ordered,
                     const CompiledStatement& statement, const CompiledStatement& cover,
                     Clause (*pass)(const CompiledStatement&)) {
  if (proof.isImpossible({&subject, {pass(cover)}}, ANY_TEXT)) return false;
  Goal goal{&subject};
  for (const CompiledStatement* other : ordered) {
    if (other == &statement) break;
    goal.clauses.push_back(pass(*other));
  }
  return proof.isImpossible(goal, ANY_TEXT);
}

Finding unreachable(const CompiledStatement& statement, const char* text) {
  return {"unreachable", placeOf(*statement.layout), text};
}

void addUnreachable(Proof& proof, const CompiledStatement& statement,
                    const CompiledStatement* cover, const char* text) {
  Finding finding = unreachable(statement, text);
  if (cover != nullptr) {
    finding.related.push_back({placeOf(*cover->layout), "this statement decides first"});
  }
  proof.add(std::move(finding));
}

// Statements of which the first that applies counts: those with a condition in their order, then
// the one without.
void askFirstThatApplies(Proof& proof, const Subject& subject,
                         const std::vector<CompiledStatement>& statements,
                         Clause (*pass)(const CompiledStatement&), const char* text,
                         Explained& explained) {
  std::vector<const CompiledStatement*> ordered;
  for (const bool conditional : {true, false}) {
    for (const CompiledStatement& statement : statements) {
      if (statement.condition.has_value() == conditional) ordered.push_back(&statement);
    }
  }
  std::vector<const CompiledStatement*> earlier;
  for (const CompiledStatement* statement : ordered) {
    if (explained.dead.contains(statement)) continue;
    Goal applies{&subject};
    if (statement->condition) applies.clauses.push_back({{&*statement->condition, WANT_TRUE}});
    Goal goal = applies;
    for (const CompiledStatement* other : earlier) goal.clauses.push_back(pass(*other));
    if (!earlier.empty() && !proof.isImpossible(applies, ANY_VARIANT)) {
      const Verdict verdict = proof.decide(goal, ANY_VARIANT);
      if (verdict == VERDICT_UNDECIDED) proof.addUndecided(unreachable(*statement, text));
      if (verdict == VERDICT_IMPOSSIBLE) {
        explained.dead.insert(statement);
        const CompiledStatement* const cover = coverOf(proof, applies, earlier, pass);
        const bool isTold = explained.told.contains(cover) &&
                            !isCoveredByForm(proof, subject, ordered, *statement, *cover, pass);
        if (!isTold) addUnreachable(proof, *statement, cover, text);
      }
    }
    if (statement->condition) earlier.push_back(statement);
  }
}

// The values of a statement whose items are all constant; nullopt for others.
std::optional<Domain> constantValues(const CompiledStatement& statement) {
  Domain domain;
  for (const CompiledItem& item : statement.items) {
    if (item.text) {
      domain.addText(*item.text);
      continue;
    }
    if (item.lower->program.usesVariables()) return std::nullopt;
    const Value low = item.lower->program.evaluate({});
    if (item.upper && item.upper->program.usesVariables()) return std::nullopt;
    const Value high = item.upper ? item.upper->program.evaluate({}) : low;
    if (low.isNumber() && high.isNumber() && low.number <= high.number) {
      domain.addSpan(low.number, high.number);
    } else if (low.valid()) {
      domain.addText(low.text);
    }
  }
  return domain;
}

bool isWithin(const Domain& inner, const Domain& outer) {
  for (const Span& span : inner.spans()) {
    const bool found = std::any_of(outer.spans().begin(), outer.spans().end(), [&](const Span& s) {
      return s.first <= span.first && span.second <= s.second;
    });
    if (!found) return false;
  }
  return std::all_of(inner.texts().begin(), inner.texts().end(),
                     [&](const std::string& text) { return outer.texts().contains(text); });
}

// All ranges that apply count together: one adds nothing where an earlier one with its values
// always applies as well.
void askRanges(Proof& proof, const Subject& subject, Explained& explained) {
  std::vector<const CompiledStatement*> earlier;
  for (const CompiledStatement& statement : subject.rangeValid) {
    const std::optional<Domain> values = constantValues(statement);
    if (!statement.condition || explained.dead.contains(&statement) || !values ||
        statement.items.empty()) {
      continue;
    }
    const Goal applies{&subject, {{{&*statement.condition, WANT_TRUE}}}};
    const char* const text =
        "this range adds nothing: an earlier one with its values always counts too";
    bool isUndecided = false;
    for (const CompiledStatement* other : earlier) {
      const std::optional<Domain> others = constantValues(*other);
      if (!others || !isWithin(*values, *others) || proof.isImpossible(applies, ANY_VARIANT)) {
        continue;
      }
      Goal goal = applies;
      goal.clauses.push_back(passedOver(*other));
      const Verdict verdict = proof.decide(goal, ANY_VARIANT);
      isUndecided = isUndecided || verdict == VERDICT_UNDECIDED;
      if (verdict != VERDICT_IMPOSSIBLE) continue;
      addUnreachable(proof, statement, other, text);
      explained.dead.insert(&statement);
      break;
    }
    if (isUndecided && !explained.dead.contains(&statement)) {
      proof.addUndecided(unreachable(statement, text));
    }
    earlier.push_back(&statement);
  }
}

}  // namespace

void askReachability(Proof& proof, Explained& explained) {
  for (const Subject& subject : proof.subjects()) {
    if (subject.parm == nullptr) continue;
    for (const auto* statements : {&subject.defaults, &subject.rangeDoc, &subject.rangeValid}) {
      for (const CompiledStatement& statement : *statements) {
        if (explained.explains(statement)) explained.dead.insert(&statement);
      }
    }
    askFirstThatApplies(proof, subject, subject.defaults, passedOverDefault,
                        "this default is never used: an earlier one always counts", explained);
    askFirstThatApplies(proof, subject, subject.rangeDoc, passedOver,
                        "this range is never told: an earlier one always counts", explained);
    askRanges(proof, subject, explained);
  }
}
