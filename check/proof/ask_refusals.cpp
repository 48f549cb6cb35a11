#include <algorithm>
#include <cstdint>

#include "check/proof/questions.h"
#include "check/proof/setter.h"
#include "check/static/static_bounds.h"

namespace {

bool accepts(const BoundsParm& bounds, std::string value) { return bounds.check(value, false); }

// A statement with a condition that is decided at run time, and what the engine has made of it.
struct Conditional {
  const CompiledStatement* statement;
  const BoundsParm* bounds;
};

// Looks at constant ranges with a condition beside the one without, which always counts: what of
// them it refuses, and which values the two correct to and fro, so that a commit fails.
class Refusals {
 public:
  Refusals(Proof& proof, const Subject& subject) : proof_(proof), subject_(subject) {}

  void ask(const Explained& explained) {
    if (base().count() == 0 || hasRunTimeRange(subject_.definition())) return;
    if (!findConditionals() || explained.explains(subject_.rangeValid)) return;
    std::erase_if(conditionals_, [&](const Conditional& conditional) {
      return explained.dead.contains(conditional.statement);
    });
    // The static checks tell of those.
    const auto isApart = [&](const Conditional& conditional) {
      return !shareValue(base(), *conditional.bounds);
    };
    if (std::ranges::any_of(conditionals_, isApart)) return;
    if (!askCommits()) tellOutside();
  }

 private:
  [[nodiscard]] const BoundsParm& base() const { return subject_.definition().baseBounds(); }

  // Returns whether there are any, and it is known which is which.
  bool findConditionals() {
    for (const CompiledStatement& statement : subject_.rangeValid) {
      const bool isDecidedLater =
          statement.condition &&
          std::ranges::any_of(statement.condition->sources, [](const VariableSource& source) {
            return source.constant == nullptr;
          });
      if (isDecidedLater) conditionals_.push_back({&statement, nullptr});
    }
    const auto bounds = subject_.definition().conditionalBounds();
    if (conditionals_.size() != bounds.size()) return false;
    for (size_t i = 0; i < bounds.size(); ++i) conditionals_[i].bounds = bounds[i].constant;
    return !bounds.empty();
  }

  // What becomes of a value where `bounds` alone apply, before the base is asked once more.
  [[nodiscard]] std::string corrected(const BoundsParm& bounds, std::string value) const {
    static_cast<void>(base().check(value, true));
    static_cast<void>(bounds.check(value, true));
    return value;
  }

  // The values that `bounds` alone would bring out of the base: one for each that they may become.
  [[nodiscard]] std::vector<std::string> valuesRefusedBy(const BoundsParm& bounds) const {
    std::vector<std::string> values(base().strings().texts().begin(),
                                    base().strings().texts().end());
    for (const auto& [low, high] : base().integers().spans()) values.push_back(std::to_string(low));
    for (const auto& [low, high] : bounds.integers().spans()) {
      if (high < INT32_MAX && accepts(base(), std::to_string(high + 1))) {
        values.push_back(std::to_string(high + 1));
      }
    }
    // What nobody has set is empty, where a reset does not help.
    if (subject_.defaults.empty()) values.emplace_back();
    std::erase_if(values, [&](const std::string& value) {
      return accepts(base(), corrected(bounds, value));
    });
    return values;
  }

  // Whether a commit of `value` fails in the situation that is set.
  [[nodiscard]] bool isRefused(const IndexTuple& indices, std::string value) const {
    return Setter().set(*subject_.parm, indices, value, true) == SET_INVALID_VALUE;
  }

  // Tells the first range that lets a commit fail. Returns whether there is one.
  bool askCommits() {
    if (subject_.parm == nullptr || subject_.parm->parm.mode() == MODE_NEVER) return false;
    Goal first{&subject_};
    first.dependsOnRanges = true;
    for (const Conditional& conditional : conditionals_) {
      const CompiledExpression& condition = *conditional.statement->condition;
      Goal goal = first;
      goal.clauses.push_back({{&condition, WANT_TRUE}});
      first.clauses.push_back({{&condition, WANT_UNTRUE}});
      const std::vector<std::string> values = valuesRefusedBy(*conditional.bounds);
      if (!values.empty() && askCommit(goal, conditional, values)) return true;
    }
    return false;
  }

  bool askCommit(const Goal& goal, const Conditional& conditional,
                 const std::vector<std::string>& values) {
    std::string refused;
    const HealthyResult result = proof_.findHealthy(goal, [&](const IndexTuple& indices) {
      const auto found = std::ranges::find_if(
          values, [&](const std::string& value) { return isRefused(indices, value); });
      if (found != values.end()) refused = *found;
      return found != values.end();
    });
    if (result.verdict == VERDICT_IMPOSSIBLE) return false;
    Finding finding{"disjoint", placeOf(*conditional.statement->layout),
                    refused.empty() ? emptyText() : movedText(*conditional.bounds, refused)};
    finding.related = toBase();
    finding.witness = result.witness;
    if (result.verdict == VERDICT_UNDECIDED) {
      proof_.addUndecided(std::move(finding));
      return false;
    }
    proof_.add(std::move(finding));
    return true;
  }

  static std::string emptyText() {
    return "while this range applies and the parameter is still empty, each commit that reaches it "
           "fails, because the range without a condition does not take the empty value; add a "
           "default";
  }

  [[nodiscard]] std::string movedText(const BoundsParm& bounds, const std::string& value) const {
    return "this range corrects \"" + value + "\" to \"" + corrected(bounds, value) +
           "\", which the range without a condition refuses, so a commit of \"" + value +
           "\" fails; give that one a condition, or allow \"" + corrected(bounds, value) +
           "\" there, too";
  }

  // Tells the first range with values that can never be set.
  void tellOutside() {
    std::optional<Finding> finding;
    for (const Conditional& conditional : conditionals_) {
      const std::optional<std::string> outside = valueOutside(*conditional.bounds);
      if (!outside) continue;
      const TextPlace at = placeOf(*conditional.statement->layout);
      if (finding) {
        finding->related.push_back({at, "so does this"});
        continue;
      }
      finding = Finding{"disjoint", at,
                        "this range has values such as \"" + *outside +
                            "\", which the range without a condition always refuses; give that "
                            "one a condition, or allow these values there, too"};
      finding->level = LEVEL_WARNING;
      finding->related = toBase();
    }
    if (finding) proof_.add(*std::move(finding));
  }

  // The last of the numbers from `number` on, which the base accepts, that it accepts without a
  // gap.
  [[nodiscard]] int endInBase(int number) const {
    for (const auto& [low, high] : base().integers().spans()) {
      if (low <= number && number <= high) return high;
    }
    return INT32_MAX;
  }

  // A value of `bounds` that the base refuses.
  [[nodiscard]] std::optional<std::string> valueOutside(const BoundsParm& bounds) const {
    for (const std::string& text : bounds.strings().texts()) {
      if (accepts(bounds, text) && !accepts(base(), text)) return text;
    }
    for (const Span& span : bounds.integers().spans()) {
      if (!accepts(base(), std::to_string(span.first))) return std::to_string(span.first);
      const int end = endInBase(span.first);
      if (end < span.second) return std::to_string(end + 1);
    }
    return std::nullopt;
  }

  [[nodiscard]] std::vector<RelatedPlace> toBase() const {
    const auto always = std::ranges::find_if(
        subject_.rangeValid, [](const auto& statement) { return !statement.condition; });
    if (always == subject_.rangeValid.end()) return {};
    return {{placeOf(*always->layout), "the range without a condition"}};
  }

  Proof& proof_;
  const Subject& subject_;
  std::vector<Conditional> conditionals_;
};

}  // namespace

void askRefusals(Proof& proof, const Explained& explained) {
  proof.forEachSubject([&](const Subject& subject) { Refusals(proof, subject).ask(explained); });
}
