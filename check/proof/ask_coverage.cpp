#include <algorithm>
#include <memory>

#include "check/proof/compared_values.h"
#include "check/proof/questions.h"

namespace {

// That the definition is there and none of `statements` counts; nullopt where one has no condition.
std::optional<Goal> noneOf(const Subject& subject,
                           const std::vector<CompiledStatement>& statements) {
  Goal goal{&subject};
  requirePresence(goal);
  for (const CompiledStatement& statement : statements) {
    if (!statement.condition) return std::nullopt;
    goal.clauses.push_back({{&*statement.condition, WANT_UNTRUE}});
  }
  return goal;
}

// The goal that none of `statements` counts, where those of which never-true is told had another
// literal. If that covers all situations, the literal is why none counted.
class MendedCoverage {
 public:
  MendedCoverage(Proof& proof, const Goal& none, const std::vector<CompiledStatement>& statements,
                 const Explained& explained)
      : proof_(proof), mended_(none) {
    std::vector<ComparedValue> others;
    for (const CompiledStatement& statement : statements) {
      const Expression& condition = statement.condition->expression;
      const std::vector<ComparedValue> compared = comparedValues(proof, condition);
      if (!explained.dead.contains(&statement)) {
        others.insert(others.end(), compared.begin(), compared.end());
      } else if (proof.found("never-true", placeOf(proof.text().checked().source, condition)) !=
                 nullptr) {
        dead_.push_back({&*statement.condition, compared});
      }
    }
    for (Dead& dead : dead_) {
      for (const ComparedValue& compared : dead.compared) {
        dead.meant.push_back(meantValues(proof, compared, others));
      }
    }
  }

  // What has been told of a condition that, alone or with others, keeps all from being covered;
  // null where mending them would not help.
  Finding* cause() {
    if (dead_.empty() || !closesFrom(0)) return nullptr;
    return proof_.found(
        "never-true", placeOf(proof_.text().checked().source, dead_.front().condition->expression));
  }

  // With what was probably meant, where that is known.
  Goal likeliest() {
    for (const Dead& dead : dead_) {
      for (const ComparedValue& compared : dead.compared) {
        std::optional<std::string> meant = meantText(proof_, compared);
        if (!meant) continue;
        replace(dead, compared, *std::move(meant));
        break;
      }
    }
    return mended_;
  }

 private:
  struct Dead {
    const CompiledExpression* condition;
    std::vector<ComparedValue> compared;
    std::vector<std::vector<std::string>> meant = {};  // for each of these
  };

  bool closesFrom(size_t place) {
    if (place == dead_.size()) return isCovered();
    const Dead& dead = dead_[place];
    const Goal before = mended_;
    bool isTried = false;
    for (size_t i = 0; i < dead.compared.size(); ++i) {
      for (const std::string& value : dead.meant[i]) {
        isTried = true;
        replace(dead, dead.compared[i], value);
        if (closesFrom(place + 1)) return true;
        mended_ = before;
      }
    }
    return !isTried && closesFrom(place + 1);
  }

  bool isCovered() {
    if (left_ == 0) return false;
    --left_;
    return proof_.isImpossible(mended_, THIS_VARIANT, EFFORT_QUICK) ||
           proof_.findHealthy(mended_).verdict == VERDICT_IMPOSSIBLE;
  }

  void replace(const Dead& dead, const ComparedValue& compared, std::string value) {
    expressions_.push_back(std::make_unique<MendedExpression>(proof_, dead.condition->expression,
                                                              *compared.literal, std::move(value)));
    for (Clause& clause : mended_.clauses) {
      if (clause.front().expression == dead.condition) {
        clause.front().expression = &expressions_.back()->compiled();
      }
    }
  }

  Proof& proof_;
  Goal mended_;
  std::vector<Dead> dead_;
  std::vector<std::unique_ptr<MendedExpression>> expressions_;
  size_t left_ = 32;  // tries
};

// What has been told of a condition that is written twice: one of the two was meant for other
// situations. Null where there is none.
Finding* repetitionOf(Proof& proof, const std::vector<CompiledStatement>& statements) {
  for (const CompiledStatement& statement : statements) {
    if (!isRepeated(statement, statements)) continue;
    Finding* const told = proof.found("overlap", placeOf(*statement.layout));
    if (told != nullptr) return told;
  }
  return nullptr;
}

// Adds `finding` where a healthy situation meets `none`; where that only follows from a condition
// that is never true, or is written twice, says so there. Returns whether there is such a
// situation.
bool addUncovered(Proof& proof, const Goal& none, const std::vector<CompiledStatement>& statements,
                  const Explained& explained, Finding finding) {
  if (proof.isImpossible(none, THIS_VARIANT, EFFORT_QUICK)) return false;
  Finding* cause = repetitionOf(proof, statements);
  if (cause == nullptr) cause = MendedCoverage(proof, none, statements, explained).cause();
  if (cause == nullptr) {
    MendedCoverage mended(proof, none, statements, explained);
    return proof.addIfHealthy(mended.likeliest(), std::move(finding));
  }
  HealthyResult result = proof.findHealthy(none);
  if (result.verdict != VERDICT_POSSIBLE || result.isAstray) return false;
  cause->related.push_back({finding.at, "so " + finding.text});
  if (cause->witness.empty()) cause->witness = std::move(result.witness);
  if (finding.level == LEVEL_ERROR) cause->level = LEVEL_ERROR;
  return true;
}

// Whether no range of the text counts always. Constants may have left none of them.
bool isConditionalOnly(const Subject& subject) {
  return subject.definition().baseBounds().count() == 0 && !subject.rangeValid.empty();
}

// Whether constants of the command line have decided a condition: perhaps the product has no such
// index.
bool isVaried(const Subject& subject) {
  const auto isDecided = [](const CompiledStatement& statement) {
    return statement.condition &&
           std::ranges::any_of(statement.condition->sources, [](const VariableSource& source) {
             return source.constant != nullptr;
           });
  };
  return std::ranges::any_of(subject.rangeValid, isDecided) ||
         std::ranges::any_of(subject.ctrlValid, isDecided);
}

// Commits and queries know of an index what counts always and is constant. Without any range, what
// a client names is taken, so that the device works for those who name it.
void askIndex(Proof& proof, const Subject& subject) {
  const std::vector<ParmEntry*>& dependents = subject.index->dependents;
  if (subject.index->index->baseBounds().count() > 0 || dependents.empty()) return;
  if (isVaried(subject)) return;
  const bool isOpen = subject.rangeValid.empty();
  const std::string lacking = isOpen ? "range, and takes every value" : "constant range";
  Finding finding{
      "uncovered", isOpen ? placeOfName(subject) : placeOf(*subject.rangeValid.front().layout),
      "this index has no " + lacking + ": no instance of \"" + dependents.front()->parm.name() +
          "\" is known to a query, or to a commit that does not name it; give it a "
          "range without a condition, of all values that it may ever have"};
  finding.level = isOpen ? LEVEL_WARNING : LEVEL_ERROR;
  proof.add(std::move(finding));
}

bool askRanges(Proof& proof, const Subject& subject, const Explained& explained) {
  if (!isConditionalOnly(subject)) return false;
  const std::optional<Goal> goal = noneOf(subject, subject.rangeValid);
  if (!goal) return false;
  Finding finding{"uncovered", placeOf(*subject.rangeValid.front().layout),
                  "there is a situation in which none of these ranges counts, and every value is "
                  "taken"};
  finding.level = LEVEL_ERROR;
  return addUncovered(proof, *goal, subject.rangeValid, explained, std::move(finding));
}

void askOfDefaults(Proof& proof, const Subject& subject, const Explained& explained) {
  if (subject.defaults.empty()) return;
  const std::optional<Goal> goal = noneOf(subject, subject.defaults);
  if (!goal) return;
  Finding finding{"uncovered", placeOf(*subject.defaults.front().layout),
                  "there is a situation in which none of these defaults counts, and a reset leaves "
                  "the value empty"};
  finding.level = LEVEL_WARNING;
  addUncovered(proof, *goal, subject.defaults, explained, std::move(finding));
}

}  // namespace

void askCoverage(Proof& proof, const Explained& explained) {
  proof.forEachSubject([&](const Subject& subject) {
    if (explained.explains(subject.rangeValid)) return;
    if (subject.parm == nullptr) {
      askIndex(proof, subject);
      return;
    }
    if (!askRanges(proof, subject, explained) && !explained.explains(subject.defaults)) {
      askOfDefaults(proof, subject, explained);
    }
  });
}
