#include "check/proof/questions.h"

namespace {

// That the definition is there and none of `statements` counts; nullopt where one has no condition.
std::optional<Goal> noneOf(const Subject& subject,
                           const std::vector<CompiledStatement>& statements) {
  Goal goal{&subject};
  for (const CompiledStatement& control : subject.ctrlValid) {
    if (control.condition) goal.clauses.push_back({{&*control.condition, WANT_TRUE}});
  }
  for (const CompiledStatement& statement : statements) {
    if (!statement.condition) return std::nullopt;
    goal.clauses.push_back({{&*statement.condition, WANT_UNTRUE}});
  }
  return goal;
}

// Whether the engine judges by conditional bounds alone: no range of the text counts always.
bool isConditionalOnly(const Subject& subject) {
  const IndexDef& definition = subject.definition();
  return definition.baseBounds().count() == 0 && !definition.conditionalBounds().empty();
}

bool askRanges(Proof& proof, const Subject& subject) {
  if (!isConditionalOnly(subject)) return false;
  const std::optional<Goal> goal = noneOf(subject, subject.rangeValid);
  if (!goal) return false;
  const char* const text =
      subject.parm == nullptr
          ? "there is a situation in which none of these ranges counts, and the index takes no "
            "value"
          : "there is a situation in which none of these ranges counts, and every value is taken";
  Finding finding{"uncovered", placeOf(*subject.rangeValid.front().layout), text};
  finding.level = LEVEL_ERROR;
  return proof.addIfHealthy(*goal, std::move(finding));
}

void askOfDefaults(Proof& proof, const Subject& subject) {
  if (subject.defaults.empty()) return;
  const std::optional<Goal> goal = noneOf(subject, subject.defaults);
  if (!goal) return;
  Finding finding{"uncovered", placeOf(*subject.defaults.front().layout),
                  "there is a situation in which none of these defaults counts, and a reset leaves "
                  "the value empty"};
  finding.level = LEVEL_WARNING;
  proof.addIfHealthy(*goal, std::move(finding));
}

}  // namespace

void askCoverage(Proof& proof, const Explained& explained) {
  for (const Subject& subject : proof.subjects()) {
    const bool isReported = explained.explains(subject.rangeValid) || askRanges(proof, subject);
    if (!isReported && !explained.explains(subject.defaults) && subject.parm != nullptr) {
      askOfDefaults(proof, subject);
    }
  }
}
