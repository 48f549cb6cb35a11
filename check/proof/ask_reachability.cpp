#include "check/proof/ambiguity.h"
#include "check/proof/questions.h"

namespace {

// The clauses that make a default or rangeDoc statement the one that is passed over.
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

// Whether `wider` counts wherever `goal` holds only because it always does, which has been told.
bool isOnlyAlwaysTrue(Proof& proof, const Explained& explained, const Goal& goal,
                      const CompiledStatement& wider) {
  return explained.told.contains(&wider) && !proof.isImpossible(goal, ANY_TEXT);
}

// A range limits nothing where a later one with its values always applies as well. Returns whether
// that is so.
bool askLimit(Proof& proof, const Explained& explained, const Subject& subject,
              const CompiledStatement& statement, const CompiledStatement& later) {
  Goal goal{&subject, {{{&*statement.condition, WANT_TRUE}}}};
  goal.clauses.push_back(passedOver(later));
  const Verdict verdict = proof.decide(goal, ANY_VARIANT);
  if (verdict == VERDICT_POSSIBLE) return false;
  Finding finding{"overlap", placeOf(*statement.layout),
                  "this range limits nothing: a later one with its values always counts, too; let "
                  "the conditions exclude each other"};
  finding.related.push_back({placeOf(*later.layout), "the later one"});
  if (verdict == VERDICT_UNDECIDED) {
    proof.addUndecided(std::move(finding));
    return false;
  }
  if (!isOnlyAlwaysTrue(proof, explained, goal, later)) proof.add(std::move(finding));
  return true;
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
      const bool isWider = isWithin(*others, *values) && !isWithin(*values, *others);
      if (isWider && askLimit(proof, explained, subject, *other, statement)) break;
      if (!isWithin(*values, *others) || proof.isImpossible(applies, ANY_VARIANT)) continue;
      Goal goal = applies;
      goal.clauses.push_back(passedOver(*other));
      const Verdict verdict = proof.decide(goal, ANY_VARIANT);
      isUndecided = isUndecided || verdict == VERDICT_UNDECIDED;
      if (verdict != VERDICT_IMPOSSIBLE) continue;
      if (!isOnlyAlwaysTrue(proof, explained, goal, *other)) {
        addUnreachable(proof, statement, other, text);
      }
      explained.dead.insert(&statement);
      break;
    }
    if (isUndecided && !explained.dead.contains(&statement)) {
      proof.addUndecided(unreachable(statement, text));
    }
    earlier.push_back(&statement);
  }
}

// A parameter that nobody sets, whose ranges have one value each: it becomes the first of them that
// applies, unless it holds another one that applies.
class DerivedValues {
 public:
  DerivedValues(Proof& proof, const Subject& subject, Explained& explained)
      : proof_(proof), subject_(subject), explained_(explained) {}

  void ask() {
    if (!findValues()) return;
    bool isTold = false;
    for (size_t place = 0; place < values_.size(); ++place) {
      // What another range gives, too, may be meant to be held on to.
      if (isGivenElsewhere(place)) continue;
      if (askFirst(place)) {
        isTold = true;
        continue;
      }
      for (size_t later = place + 1; later < values_.size(); ++later) {
        if (!askPair(place, later)) continue;
        isTold = true;
        break;
      }
    }
    if (!isTold) askTogether();
  }

 private:
  struct DerivedValue {
    const CompiledStatement* statement;
    Domain value;
  };

  bool findValues() {
    if (subject_.record->access != ACCESS_RO && subject_.record->access != ACCESS_ROSTRICT) {
      return false;
    }
    for (const CompiledStatement& statement : subject_.rangeValid) {
      if (explained_.dead.contains(&statement)) continue;
      const std::optional<Domain> value = constantValues(statement);
      if (!statement.condition || !value || value->size() != 1) return false;
      values_.push_back({&statement, *value});
    }
    return std::ranges::all_of(subject_.defaults, [](const CompiledStatement& statement) {
      return constantValues(statement).has_value();
    });
  }

  [[nodiscard]] bool isGivenElsewhere(size_t place) const {
    const Domain& value = values_[place].value;
    for (size_t other = 0; other < values_.size(); ++other) {
      if (other != place && isWithin(values_[other].value, value)) return true;
    }
    return std::ranges::any_of(subject_.defaults, [&](const CompiledStatement& statement) {
      return isWithin(*constantValues(statement), value);
    });
  }

  [[nodiscard]] Goal countsAt(size_t place) const {
    return {&subject_, {{{&*values_[place].statement->condition, WANT_TRUE}}}};
  }

  // Tells that earlier ranges always count, too. Returns whether that is so.
  bool askFirst(size_t place) {
    if (place == 0) return false;
    const char* const text =
        "this range never gives its value: whenever it counts an earlier one does, too, and "
        "decides first; let the conditions exclude each other";
    std::vector<const CompiledStatement*> earlier;
    Goal goal = countsAt(place);
    for (size_t other = 0; other < place; ++other) {
      earlier.push_back(values_[other].statement);
      goal.clauses.push_back(passedOver(*earlier.back()));
    }
    const CompiledStatement& statement = *values_[place].statement;
    const Verdict verdict = proof_.decide(goal, ANY_VARIANT);
    if (verdict == VERDICT_UNDECIDED) proof_.addUndecided(unreachable(statement, text));
    if (verdict != VERDICT_IMPOSSIBLE) return false;
    addUnreachable(proof_, statement, coverOf(proof_, countsAt(place), earlier, passedOver), text);
    explained_.dead.insert(&statement);
    return true;
  }

  // Tells that a later range always counts, too. Returns whether that is so.
  bool askPair(size_t place, size_t later) {
    const CompiledStatement& special = *values_[place].statement;
    const CompiledStatement& general = *values_[later].statement;
    Goal goal = countsAt(place);
    goal.clauses.push_back(passedOver(general));
    const Verdict verdict = proof_.decide(goal, ANY_VARIANT);
    if (verdict == VERDICT_POSSIBLE) return false;
    Finding finding{"overlap", placeOf(*general.layout),
                    "this range counts, too, whenever an earlier one does, and the value that is "
                    "held then stays, so that the earlier one decides only sometimes; let the "
                    "conditions exclude each other"};
    finding.related.push_back({placeOf(*special.layout), "the earlier one"});
    if (verdict == VERDICT_UNDECIDED) {
      proof_.addUndecided(std::move(finding));
      return false;
    }
    proof_.add(std::move(finding));
    return true;
  }

  void askTogether() {
    std::vector<DerivedRange> ranges;
    for (const DerivedValue& derived : values_) {
      ranges.push_back({derived.statement, derived.value.values(1)->front()});
    }
    askAmbiguity(proof_, subject_, ranges);
  }

  Proof& proof_;
  const Subject& subject_;
  Explained& explained_;
  std::vector<DerivedValue> values_;
};

}  // namespace

void askReachability(Proof& proof, Explained& explained) {
  proof.forEachSubject([&](const Subject& subject) {
    if (subject.parm == nullptr) return;
    for (const auto* statements : {&subject.defaults, &subject.rangeDoc, &subject.rangeValid}) {
      for (const CompiledStatement& statement : *statements) {
        const bool isToldOf = isRepeated(statement, *statements) &&
                              proof.found("overlap", placeOf(*statement.layout)) != nullptr;
        if (isToldOf || explained.explains(statement)) explained.dead.insert(&statement);
      }
    }
    askFirstThatApplies(proof, subject, subject.defaults, passedOverDefault,
                        "this default is never used: an earlier one always counts", explained);
    askFirstThatApplies(proof, subject, subject.rangeDoc, passedOver,
                        "this range is never told: an earlier one always counts", explained);
    askRanges(proof, subject, explained);
    DerivedValues(proof, subject, explained).ask();
  });
}
