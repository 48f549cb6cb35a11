#include <algorithm>

#include "check/proof/questions.h"
#include "deflang/expression/operators.h"
#include "deflang/expression/vid_std_name.h"
#include "srcs/vid_std_figures.h"
#include "sw/parm/parm_name.h"

namespace {

// That the definition is there and `statement` counts.
Goal countsIn(const Subject& subject, const CompiledStatement& statement) {
  Goal goal{&subject};
  for (const CompiledStatement& control : subject.ctrlValid) {
    if (control.condition) goal.clauses.push_back({{&*control.condition, WANT_TRUE}});
  }
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

// A figure that is undefined in the situation of `witness`, and why.
std::optional<Finding> undefinedFigure(const CompiledExpression& expression,
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
    return Finding{"undefined-figure", placeOf(*token),
                   std::string(source.name) + " can be \"" + held->second +
                       "\", which has no figure " + std::string(source.figure->name)};
  }
  return std::nullopt;
}

// Asks whether `wish` can come true; what misses a figure is told as that.
void ask(Proof& proof, Goal goal, Clause clause, const CompiledExpression& place,
         std::string_view code, const char* text) {
  goal.clauses.push_back(std::move(clause));
  if (proof.isImpossible(goal, THIS_VARIANT, EFFORT_QUICK)) return;
  const HealthyResult result = proof.findHealthy(goal);
  if (result.verdict == VERDICT_IMPOSSIBLE) return;
  Finding finding{code, placeOf(place.expression), text};
  if (result.verdict == VERDICT_UNDECIDED) {
    proof.addUndecided(std::move(finding));
    return;
  }
  if (std::optional<Finding> figure = undefinedFigure(place, result.witness)) {
    finding = *std::move(figure);
    if (proof.isTold("unknown-standard", result.witness)) return;
  }
  finding.witness = result.witness;
  proof.add(std::move(finding));
}

// Whether the expression can be without a value, other than by a text that is too long: every
// operator but two has a result for whatever has a value.
bool canBeMissing(const CompiledExpression& expression) {
  const bool divides = std::ranges::any_of(expression.program.steps(), [](const auto& step) {
    return step.kind == OP_DIVIDE || step.kind == OP_REMAINDER;
  });
  return divides || std::ranges::any_of(expression.sources, [](const VariableSource& source) {
           return source.figure != nullptr ||
                  (source.parm == nullptr && source.constant == nullptr);
         });
}

void askItem(Proof& proof, const Goal& counts, const CompiledItem& item) {
  if (item.text || !proof.domains().mayFail(item)) return;
  for (const auto* end : {&item.lower, &item.upper}) {
    if (!usesVariables(*end)) continue;
    Clause missing;
    if (canBeMissing(**end)) missing.push_back({&**end, WANT_MISSING});
    if (item.upper) missing.push_back({&**end, WANT_TEXT});
    if (missing.empty()) continue;
    ask(proof, counts, std::move(missing), **end, "no-value",
        "this can be without a value, and the range then takes every value");
  }
  if (!item.upper) return;
  ask(proof, counts, {{&*item.lower, WANT_ABOVE, &*item.upper}}, computedEnd(item), "empty-range",
      "the lower end can be above the upper end; the range then takes every value");
}

void askRanges(Proof& proof, const Subject& subject, const std::vector<CompiledStatement>& ranges,
               const Explained& explained) {
  for (const CompiledStatement& statement : ranges) {
    if (explained.dead.contains(&statement) || explained.explains(statement)) continue;
    const Goal counts = countsIn(subject, statement);
    if (statement.items.empty()) {
      proof.addIfHealthy(counts, {"empty-range", placeOf(*statement.layout),
                                  "this range has no item, and so takes every value"});
    }
    for (const CompiledItem& item : statement.items) askItem(proof, counts, item);
  }
}

void askDefault(Proof& proof, const Subject& subject, const CompiledStatement& statement) {
  const CompiledItem& value = statement.items.front();
  if (!usesVariables(value.lower) || !canBeMissing(*value.lower)) return;
  ask(proof, countsIn(subject, statement), {{&*value.lower, WANT_MISSING}}, *value.lower,
      "no-value", "this default can be without a value, and the next one counts then");
}

}  // namespace

void askValues(Proof& proof, const Explained& explained) {
  proof.forEachSubject([&](const Subject& subject) {
    askRanges(proof, subject, subject.rangeValid, explained);
    askRanges(proof, subject, subject.rangeDoc, explained);
    if (subject.parm == nullptr) return;
    for (const CompiledStatement& statement : subject.defaults) {
      if (!explained.dead.contains(&statement) && !explained.explains(statement)) {
        askDefault(proof, subject, statement);
      }
    }
  });
}
