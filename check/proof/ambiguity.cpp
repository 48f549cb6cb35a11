#include "check/proof/ambiguity.h"

#include <algorithm>
#include <set>
#include <tuple>

#include "check/proof/replay.h"
#include "check/proof/start_order.h"
#include "database/commit.h"
#include "database/transaction.h"
#include "deflang/expression/operators.h"
#include "sw/parm/parm_name.h"

namespace {

bool isOrdering(const Token& token) {
  return token.kind == OP_LESS || token.kind == OP_GREATER || token.kind == OP_LESS_EQUAL ||
         token.kind == OP_GREATER_EQUAL;
}

// The names and literals of a condition.
std::set<std::tuple<int, int32_t, std::string_view>> operandsOf(const Expression& condition) {
  std::set<std::tuple<int, int32_t, std::string_view>> operands;
  for (const Token& token : condition.tokens) {
    const bool isOperand =
        token.kind == TOKEN_VARIABLE || token.kind == TOKEN_NUMBER || token.kind == TOKEN_STRING;
    if (isOperand) operands.emplace(token.kind, token.number, token.text);
  }
  return operands;
}

// Whether the two may be the limits of a hysteresis: they order a parameter, but not by the same
// limit, as t >= 50 and t <= 50 do.
bool mayBeHysteresis(const CompiledExpression& one, const CompiledExpression& other) {
  const auto orderings = std::ranges::count_if(one.expression.tokens, isOrdering);
  const auto others = std::ranges::count_if(other.expression.tokens, isOrdering);
  if (orderings == 0 || others == 0) return false;
  const bool isOneLimit =
      orderings == 1 && others == 1 && operandsOf(one.expression) == operandsOf(other.expression);
  return !isOneLimit && std::ranges::any_of(one.sources, [&](const VariableSource& source) {
    return source.parm != nullptr &&
           std::ranges::find(other.sources, source.parm, &VariableSource::parm) !=
               other.sources.end();
  });
}

class Ambiguity {
 public:
  Ambiguity(Proof& proof, const Subject& subject, std::span<const DerivedRange> ranges)
      : proof_(proof), subject_(subject), ranges_(ranges) {}

  void ask() {
    for (size_t later = 1; later < ranges_.size(); ++later) {
      for (size_t earlier = 0; earlier < later; ++earlier) {
        const bool isMeant = isGivenTwice(earlier) || isGivenTwice(later) ||
                             mayBeHysteresis(conditionOf(earlier), conditionOf(later));
        if (!isMeant && askPair(earlier, later)) return;
      }
    }
  }

 private:
  [[nodiscard]] const CompiledExpression& conditionOf(size_t place) const {
    return *ranges_[place].statement->condition;
  }

  [[nodiscard]] bool isGivenTwice(size_t place) const {
    return std::ranges::count(ranges_, ranges_[place].value, &DerivedRange::value) > 1;
  }

  // That the parameter is there.
  [[nodiscard]] Goal isAvailable() const {
    Goal goal{&subject_};
    requirePresence(goal);
    return goal;
  }

  // That the range at `place` counts and gives its value: no earlier one does, nor the `other` one.
  [[nodiscard]] Goal gives(size_t place, size_t other) const {
    Goal goal = isAvailable();
    goal.clauses.push_back({{&conditionOf(place), WANT_TRUE}});
    for (size_t earlier = 0; earlier < place; ++earlier) {
      goal.clauses.push_back({{&conditionOf(earlier), WANT_UNTRUE}});
    }
    if (place < other) goal.clauses.push_back({{&conditionOf(other), WANT_UNTRUE}});
    return goal;
  }

  // A situation, for the same instance as `together` where there is one.
  HealthyResult find(const Goal& goal, const HealthyResult* together) {
    if (together == nullptr || together->indices.empty()) return proof_.findHealthy(goal);
    return proof_.findHealthy(
        goal, [&](const IndexTuple& indices) { return indices == together->indices; });
  }

  // Returns whether no more is to be asked: it is told, or not decided.
  bool askPair(size_t earlier, size_t later) {
    Goal goal = isAvailable();
    for (const size_t place : {earlier, later}) {
      goal.clauses.push_back({{&conditionOf(place), WANT_TRUE}});
    }
    if (proof_.isImpossible(goal, THIS_VARIANT, EFFORT_QUICK)) return false;
    const HealthyResult together = find(goal, nullptr);
    if (together.verdict == VERDICT_IMPOSSIBLE || together.isAstray) return false;
    bool isDecided = together.verdict == VERDICT_POSSIBLE;
    std::vector<NamedValues> alone;
    for (const size_t place : {earlier, later}) {
      if (!isDecided) break;
      HealthyResult result = find(gives(place, place == earlier ? later : earlier), &together);
      if (result.verdict == VERDICT_IMPOSSIBLE || result.isAstray) return false;
      isDecided = result.verdict == VERDICT_POSSIBLE;
      alone.push_back(std::move(result.witness));
    }
    if (isDecided) {
      if (!isKept(ranges_[earlier].value, alone[1], alone[0], together)) return false;
      if (!isKept(ranges_[later].value, alone[0], alone[1], together)) return false;
    }
    Finding finding = findingOf(earlier, later);
    if (isDecided) {
      finding.witness = together.witness;
      proof_.add(std::move(finding));
    } else {
      proof_.addUndecided(std::move(finding));
    }
    return true;
  }

  // Whether the engine derives `value` when it goes from `other` to `alone`, where its range gives
  // it, and keeps it when one commit leads to `together`. It starts elsewhere because the empty
  // value is not corrected to 0.
  bool isKept(const std::string& value, const NamedValues& other, const NamedValues& alone,
              const HealthyResult& together) {
    bool isKept = false;
    const bool isDone = proof_.ask([&] {
      Database& database = proof_.text().database();
      StartOrder order;
      if (!findStartOrder(database, fullName(subject_.name(), together.indices), order)) return;
      ConfinedCommits commits(order.names, database);
      static_cast<void>(commits.moveFromDefaults(other));
      const ParmDef& parm = subject_.parm->parm;
      commitTogether(alone);
      if (parm.committedText(together.indices) != value) return;
      commitTogether(together.witness);
      isKept = parm.committedText(together.indices) == value;
    });
    return isDone && isKept;
  }

  void commitTogether(const NamedValues& values) {
    Transaction transaction(proof_.text().database());
    for (const auto& [name, value] : values) {
      static_cast<void>(transaction.set(name, value, true));  // index values are no parameters
    }
    std::vector<Change> changes;
    static_cast<void>(commit(transaction, changes));
  }

  [[nodiscard]] Finding findingOf(size_t earlier, size_t later) const {
    Finding finding{"overlap", placeOf(*ranges_[later].statement->layout),
                    "this range and an earlier one can count together, and the value then stays "
                    "what it was, \"" +
                        ranges_[earlier].value + "\" or \"" + ranges_[later].value +
                        "\"; let the conditions exclude each other"};
    finding.related.push_back({placeOf(*ranges_[earlier].statement->layout), "the earlier one"});
    return finding;
  }

  Proof& proof_;
  const Subject& subject_;
  std::span<const DerivedRange> ranges_;
};

}  // namespace

void askAmbiguity(Proof& proof, const Subject& subject, std::span<const DerivedRange> ranges) {
  Ambiguity(proof, subject, ranges).ask();
}
