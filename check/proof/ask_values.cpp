#include <algorithm>

#include "base/number.h"
#include "check/proof/asked_operators.h"
#include "check/proof/present_value.h"
#include "check/proof/questions.h"
#include "check/static/token_place.h"
#include "deflang/expression/vid_std_name.h"
#include "srcs/vid_std_figures.h"
#include "sw/parm/parm_name.h"

namespace {

// That the definition is there and `statement` counts.
Goal countsIn(const Subject& subject, const CompiledStatement& statement) {
  Goal goal{&subject};
  requirePresence(goal);
  if (statement.condition) goal.clauses.push_back({{&*statement.condition, WANT_TRUE}});
  return goal;
}

bool usesVariables(const std::optional<CompiledExpression>& expression) {
  return expression && expression->program.usesVariables();
}

// The end of a span that is computed, the lower one of two.
const CompiledExpression& computedEnd(const CompiledItem& item) {
  return usesVariables(item.lower) || !item.upper ? *item.lower : *item.upper;
}

// A figure that is undefined in the situation of `witness`, and why. That a selector has no range
// is told once, however many figures of it are used.
std::optional<Finding> undefinedFigure(const CompiledText& text,
                                       const CompiledExpression& expression,
                                       const NamedValues& witness) {
  for (const VariableSource& source : expression.sources) {
    if (source.figure == nullptr) continue;
    const auto held = std::find_if(witness.begin(), witness.end(), [&](const auto& pair) {
      return baseName(pair.first) == baseName(source.name);
    });
    if (held == witness.end() || vidStdFigure(held->second, *source.figure)) continue;
    const auto token =
        std::find_if(expression.expression.tokens.begin(), expression.expression.tokens.end(),
                     [&](const Token& one) {
                       return one.kind == TOKEN_VARIABLE && referencedName(one.text) == source.name;
                     });
    const Subject* const selector = text.find(baseName(source.name));
    if (selector != nullptr && selector->rangeValid.empty()) {
      return Finding{"undefined-figure",
                     placeOfName(*selector),
                     std::string(source.name) +
                         " has no range, so it can be a text that selects no video standard, and "
                         "its figures then have no value; give it a range of the standards' names",
                     {{tokenPlace(text.checked().source, *token), "a figure of it is used here"}}};
    }
    return Finding{"undefined-figure", tokenPlace(text.checked().source, *token),
                   std::string(source.name) + " can be \"" + held->second +
                       "\", which has no figure " + std::string(source.figure->name)};
  }
  return std::nullopt;
}

// What can go wrong with a value, and what comes of it then.
struct WrongValue {
  std::string_view code;
  std::string what;
  std::string consequence;
};

// What can go wrong with values in the situations in which a statement counts.
class WrongValues {
 public:
  WrongValues(Proof& proof, const Goal& counts) : proof_(proof), counts_(counts) {}

  // Asks whether a wish of `clause` can come true. `place` is what is wrong then.
  void ask(Clause clause, const CompiledExpression& place, const WrongValue& wrong) {
    Goal goal = counts_;
    goal.clauses.push_back(std::move(clause));
    if (proof_.isImpossible(goal, THIS_VARIANT, EFFORT_QUICK)) return;
    const HealthyResult result = proof_.findHealthy(goal);
    if (result.verdict == VERDICT_IMPOSSIBLE || result.isAstray) return;
    const TextPlace at = placeOf(proof_.text().checked().source, place.expression);
    if (result.verdict == VERDICT_UNDECIDED) {
      proof_.addUndecided({wrong.code, at, wrong.what + wrong.consequence});
      return;
    }
    std::optional<Finding> finding = undefinedFigure(proof_.text(), place, result.witness);
    if (finding && proof_.isTold("unknown-standard", result.witness)) return;
    if (!finding) finding = divisionByZero(place, result, wrong);
    if (!finding) finding = overflow(place, goal, result, wrong);
    if (!finding) finding = Finding{wrong.code, at, wrong.what + wrong.consequence};
    finding->witness = result.witness;
    proof_.add(*std::move(finding));
  }

 private:
  // The one that reads the goal in a situation; without a parameter nothing more is known of it.
  [[nodiscard]] Reader readerOf(const IndexTuple& indices) const {
    return counts_.subject->parm == nullptr
               ? Reader()
               : Reader(counts_.subject->parm, indices, indices.size());
  }

  [[nodiscard]] std::optional<Finding> divisionByZero(const CompiledExpression& place,
                                                      const HealthyResult& result,
                                                      const WrongValue& wrong) const {
    if (wrong.code != "no-value") return std::nullopt;
    const Reader reader = readerOf(result.indices);
    for (const AskedOperator& one : operatorsOf(proof_.text(), place.expression, divides)) {
      const Value divisor = valueIn(result.witness, reader, one.right);
      const bool isZero = (divisor.isNumber() ? divisor.number : leadingNumber(divisor.text)) == 0;
      if (!divisor.valid() || !isZero) continue;
      return Finding{wrong.code, one.at, "this can divide by 0" + wrong.consequence};
    }
    return std::nullopt;
  }

  // Where an end wraps around, that is why the ends are the wrong way round, unless they are so
  // somewhere else as well.
  std::optional<Finding> overflow(const CompiledExpression& place, const Goal& goal,
                                  const HealthyResult& result, const WrongValue& wrong) {
    if (wrong.code != "empty-range" || counts_.subject->parm == nullptr) return std::nullopt;
    const std::vector<AskedOperator> operators = operatorsOf(
        proof_.text(), place.expression, [](int32_t code) { return overflowOf(code).has_value(); });
    const auto overflown = [&](const auto& valueOf) {
      return std::ranges::find_if(operators, [&](const AskedOperator& one) {
        return comesTrue({&one.left, *overflowOf(one.code), &one.right}, valueOf);
      });
    };
    const Reader reader = readerOf(result.indices);
    const auto found = overflown([&](const CompiledExpression& expression) {
      return valueIn(result.witness, reader, expression);
    });
    if (found == operators.end()) return std::nullopt;
    const StagedValues staged;
    const HealthyResult other = proof_.findHealthy(goal, [&](const IndexTuple& indices) {
      const Reader present = readerOf(indices);
      return overflown([&](const CompiledExpression& expression) {
               return presentValue(expression, present, staged);
             }) == operators.end();
    });
    if (other.verdict == VERDICT_POSSIBLE) return std::nullopt;
    Finding finding{"overflow", found->at,
                    "this can pass what 32 bits hold, and then goes on from the other end: " +
                        wrong.what + wrong.consequence};
    finding.level = LEVEL_ERROR;
    return finding;
  }

  Proof& proof_;
  const Goal& counts_;
};

// Whether the expression can be without a value, other than by a text that is too long: every
// operator but two has a result for whatever has a value.
bool canBeMissing(const CompiledExpression& expression) {
  const bool hasDivision = std::ranges::any_of(expression.program.steps(),
                                               [](const auto& step) { return divides(step.kind); });
  return hasDivision || std::ranges::any_of(expression.sources, [](const VariableSource& source) {
           return source.figure != nullptr ||
                  (source.parm == nullptr && source.constant == nullptr);
         });
}

// One kind of range, and what comes of one that cannot be used.
struct RangeKind {
  std::vector<CompiledStatement> Subject::*statements;
  const char* unusable;
  const char* withoutItem;
  FindingLevel levelWithoutItem;
};

constexpr RangeKind RANGE_KINDS[] = {
    {&Subject::rangeValid, "the range then takes every value",
     "this range has no item, and so takes every value", LEVEL_ERROR},
    {&Subject::rangeDoc, "a query of the range then fails",
     "this menu has no item, so a query of the range answers that there is no value",
     LEVEL_WARNING},
};

void askItem(Proof& proof, const Goal& counts, const CompiledItem& item, const RangeKind& kind) {
  if (item.text || !proof.domains().mayFail(item)) return;
  for (const auto* end : {&item.lower, &item.upper}) {
    if (!usesVariables(*end)) continue;
    Clause missing;
    if (canBeMissing(**end)) missing.push_back({&**end, WANT_MISSING});
    if (item.upper) missing.push_back({&**end, WANT_TEXT});
    if (missing.empty()) continue;
    WrongValues(proof, counts)
        .ask(std::move(missing), **end,
             {"no-value", "this can be without a value", std::string(", and ") + kind.unusable});
  }
  if (!item.upper) return;
  WrongValues(proof, counts)
      .ask({{&*item.lower, WANT_ABOVE, &*item.upper}}, computedEnd(item),
           {"empty-range", "the lower end can be above the upper end",
            std::string("; ") + kind.unusable});
}

void askRanges(Proof& proof, const Subject& subject, const RangeKind& kind,
               const Explained& explained) {
  for (const CompiledStatement& statement : subject.*kind.statements) {
    if (explained.dead.contains(&statement) || explained.explains(statement)) continue;
    const Goal counts = countsIn(subject, statement);
    if (statement.items.empty()) {
      Finding finding{"empty-range", placeOf(*statement.layout), kind.withoutItem};
      finding.level = kind.levelWithoutItem;
      proof.addIfHealthy(counts, std::move(finding));
    }
    for (const CompiledItem& item : statement.items) askItem(proof, counts, item, kind);
  }
}

void askDefault(Proof& proof, const Subject& subject, const CompiledStatement& statement) {
  const CompiledItem& value = statement.items.front();
  if (!usesVariables(value.lower) || !canBeMissing(*value.lower)) return;
  const Goal counts = countsIn(subject, statement);
  WrongValues(proof, counts)
      .ask({{&*value.lower, WANT_MISSING}}, *value.lower,
           {"no-value", "this default can be without a value",
            ", and the next default counts then"});
}

}  // namespace

void askValues(Proof& proof, const Explained& explained) {
  proof.forEachSubject([&](const Subject& subject) {
    for (const RangeKind& kind : RANGE_KINDS) askRanges(proof, subject, kind, explained);
    if (subject.parm == nullptr) return;
    for (const CompiledStatement& statement : subject.defaults) {
      if (!explained.dead.contains(&statement) && !explained.explains(statement)) {
        askDefault(proof, subject, statement);
      }
    }
  });
}
