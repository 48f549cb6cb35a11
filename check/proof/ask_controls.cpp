#include <algorithm>
#include <string>

#include "check/proof/questions.h"

namespace {

using Statements = std::vector<const CompiledStatement*>;

// Several ctrlRO or ctrlValid statements that leave no situation in which a client can set the
// parameter, though each of them does.
class Controls {
 public:
  Controls(Proof& proof, Explained& explained, const Subject& subject)
      : proof_(proof), explained_(explained), subject_(subject) {}

  void ask() {
    if (!isAskable(subject_.ctrlValid) || !isAskable(subject_.ctrlRO)) return;
    const bool isNeverThere = subject_.ctrlValid.size() > 1 && askAvailability();
    if (!isNeverThere && subject_.parm != nullptr && subject_.record->access == ACCESS_RW) {
      askLock();
    }
  }

 private:
  // Whether nothing is told of them, and none is decided when the text is read: that may be meant.
  [[nodiscard]] bool isAskable(const std::vector<CompiledStatement>& statements) const {
    return std::ranges::all_of(statements, [&](const CompiledStatement& statement) {
      return statement.condition && !statement.condition->sources.empty() &&
             !explained_.explains(statement) && !explained_.dead.contains(&statement) &&
             !explained_.told.contains(&statement);
    });
  }

  static Statements all(const std::vector<CompiledStatement>& statements) {
    Statements pointers;
    for (const CompiledStatement& statement : statements) pointers.push_back(&statement);
    return pointers;
  }

  // That a client can set it, as far as these say.
  [[nodiscard]] Goal isOpen(const Statements& available, const Statements& readOnly) const {
    Goal goal{&subject_, {}, !readOnly.empty()};  // a ctrlValid sees no index values
    for (const CompiledStatement* statement : available) {
      goal.clauses.push_back({{&*statement->condition, WANT_TRUE}});
    }
    for (const CompiledStatement* statement : readOnly) {
      goal.clauses.push_back({{&*statement->condition, WANT_UNTRUE}});
    }
    return goal;
  }

  // Whether a goal can be met: anywhere, or else by a device that has settled.
  Verdict verdictOf(const Goal& goal, bool isSettled) {
    if (!isSettled) return proof_.decide(goal, ANY_VARIANT);
    const HealthyResult result = proof_.findHealthy(goal);
    return result.isAstray ? VERDICT_POSSIBLE : result.atRest();
  }

  // What comes of a goal: the verdict, and whether only the settled device gives it. Another
  // variant may have other ranges.
  std::pair<Verdict, bool> decide(const Goal& goal) {
    const Verdict verdict = verdictOf(goal, false);
    if (verdict != VERDICT_POSSIBLE) return {verdict, false};
    const bool isVaried = !proof_.text().checked().variant.constants.empty();
    if (isVaried) return {verdict, false};
    const bool isNever =
        verdictOf(goal, true) == VERDICT_IMPOSSIBLE && !readsWhatIsNeverThere(goal);
    return {isNever ? VERDICT_IMPOSSIBLE : verdict, true};
  }

  bool readsWhatIsNeverThere(const Goal& goal) {
    return std::ranges::any_of(goal.clauses, [&](const Clause& clause) {
      return proof_.readsWhatIsNeverThere(*clause.front().expression, subject_.parm);
    });
  }

  // Returns whether it is told that it is never there, or whether that is open.
  bool askAvailability() {
    const Statements statements = all(subject_.ctrlValid);
    const auto [verdict, isSettled] = decide(isOpen(statements, {}));
    if (verdict == VERDICT_POSSIBLE) return false;
    Statements culprits = statements;
    if (verdict == VERDICT_IMPOSSIBLE) {
      culprits = fewest(statements, [&, isSettled = isSettled](const Statements& some) {
        return verdictOf(isOpen(some, {}), isSettled) == VERDICT_IMPOSSIBLE;
      });
      explained_.dead.insert(culprits.begin(), culprits.end());
    }
    tell("never-true", culprits,
         std::string(isSettled ? "once the device has settled, " : "") +
             "this condition is never true together with another ctrlValid, so the definition is "
             "never available",
         verdict);
    return true;
  }

  void askLock() {
    const Statements available = all(subject_.ctrlValid);
    const Statements readOnly = all(subject_.ctrlRO);
    if (readOnly.empty()) return;
    const auto [verdict, isSettled] = decide(isOpen(available, readOnly));
    if (verdict == VERDICT_POSSIBLE) return;
    const auto isLock = [&, isSettled = isSettled](const Statements& among,
                                                   const Statements& some) {
      return verdictOf(isOpen(among, some), isSettled) == VERDICT_IMPOSSIBLE;
    };
    Statements culprits = readOnly;
    bool isAlone = available.empty();
    if (verdict == VERDICT_IMPOSSIBLE) {
      isAlone = isAlone || isLock({}, readOnly);
      const Statements among = isAlone ? Statements() : available;
      culprits = fewest(readOnly, [&](const Statements& some) { return isLock(among, some); });
    }
    const char* const which =
        culprits.size() > 1 ? "this condition or another ctrlRO" : "this condition";
    tell("always-true", culprits,
         std::string(isSettled ? "once the device has settled, " : "") +
             (isAlone ? "" : "where the parameter is available, ") + which +
             " is always true, so no client can ever change the value",
         verdict);
  }

  // Those of `statements` that are enough for `isEnough`: one, two, or all of them.
  template <typename IsEnough>
  static Statements fewest(const Statements& statements, const IsEnough& isEnough) {
    for (const CompiledStatement* statement : statements) {
      if (isEnough({statement})) return {statement};
    }
    for (size_t later = 1; later < std::min(statements.size(), MANY_STATEMENTS); ++later) {
      for (size_t earlier = 0; earlier < later; ++earlier) {
        Statements two = {statements[earlier], statements[later]};
        if (isEnough(two)) return two;
      }
    }
    return statements;
  }

  void tell(std::string_view code, const Statements& culprits, std::string text, Verdict verdict) {
    const auto placeOfCondition = [&](const CompiledStatement* statement) {
      return placeOf(proof_.text().checked().source, statement->condition->expression);
    };
    Finding finding{code, placeOfCondition(culprits.back()), std::move(text)};
    for (const CompiledStatement* other : culprits) {
      if (other != culprits.back()) {
        finding.related.push_back({placeOfCondition(other), "the other one"});
      }
    }
    if (verdict == VERDICT_UNDECIDED) {
      proof_.addUndecided(std::move(finding));
    } else {
      proof_.add(std::move(finding));
    }
  }

  static constexpr size_t MANY_STATEMENTS = 10;  // of more, not each two are asked

  Proof& proof_;
  Explained& explained_;
  const Subject& subject_;
};

}  // namespace

void askControls(Proof& proof, Explained& explained) {
  proof.forEachSubject([&](const Subject& subject) { Controls(proof, explained, subject).ask(); });
}
