#include "check/proof/questions.h"

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

TextPlace placeOfItem(const CompiledItem& item) {
  return item.lower && !item.lower->expression.empty() ? placeOf(item.lower->expression)
                                                       : TextPlace{item.at.line, item.at.column, 0};
}

void ask(Proof& proof, Goal goal, Clause clause, const CompiledItem& item, std::string_view code,
         const char* text) {
  goal.clauses.push_back(std::move(clause));
  proof.addIfHealthy(goal, {code, placeOfItem(item), text});
}

void askItem(Proof& proof, const Goal& counts, const CompiledItem& item) {
  if (item.text || !proof.domains().mayFail(item)) return;
  Clause missing = {{&*item.lower, WANT_MISSING}};
  if (item.upper) {
    missing.push_back({&*item.upper, WANT_MISSING});
    missing.push_back({&*item.lower, WANT_TEXT});
    missing.push_back({&*item.upper, WANT_TEXT});
  }
  ask(proof, counts, std::move(missing), item, "no-value",
      "this range can be without a value, and then takes every value");
  if (!item.upper) return;
  ask(proof, counts, {{&*item.lower, WANT_ABOVE, &*item.upper}}, item, "empty-range",
      "the lower end can be above the upper end; the range then takes every value");
}

void askRanges(Proof& proof, const Subject& subject, const std::vector<CompiledStatement>& ranges,
               const Explained& explained) {
  for (const CompiledStatement& statement : ranges) {
    if (explained.dead.contains(&statement)) continue;
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
  if (!value.lower || !value.lower->program.usesVariables()) return;
  ask(proof, countsIn(subject, statement), {{&*value.lower, WANT_MISSING}}, value, "no-value",
      "this default can be without a value, and the next one counts then");
}

}  // namespace

void askValues(Proof& proof, const Explained& explained) {
  for (const Subject& subject : proof.text().subjects()) {
    askRanges(proof, subject, subject.rangeValid, explained);
    askRanges(proof, subject, subject.rangeDoc, explained);
    if (subject.parm == nullptr) continue;
    for (const CompiledStatement& statement : subject.defaults) {
      if (!explained.dead.contains(&statement)) askDefault(proof, subject, statement);
    }
  }
}
