#include "check/proof/questions.h"
#include "check/proof/setter.h"

namespace {

// The text of a default that is the same in all situations.
std::optional<std::string> constantText(const CompiledItem& value) {
  if (value.text) return value.text;
  if (value.lower->program.usesVariables()) return std::nullopt;
  const Value constant = value.lower->program.evaluate({});
  return constant.valid() ? std::optional(constant.asText()) : std::nullopt;
}

void askDefault(Proof& proof, const Subject& subject, const CompiledStatement& statement) {
  const CompiledItem& value = statement.items.front();
  const std::optional<std::string> text = constantText(value);
  if (!text || proof.isTold("unknown-standard", {{subject.name(), *text}})) return;
  Goal counts{&subject};
  counts.dependsOnRanges = true;
  if (statement.condition) counts.clauses.push_back({{&*statement.condition, WANT_TRUE}});
  std::string instead;
  const auto isKept = [&](const IndexTuple& indices) {
    const std::optional<std::string> kept = valueKept(*subject.parm, indices, *text);
    if (kept && *kept != *text) instead = *kept;
    return kept == *text;
  };
  const HealthyResult result = proof.findHealthy(counts, isKept);
  const TextPlace at = {value.at.line, value.at.column, 0};
  if (proof.isCutShort()) {
    proof.addUndecided({"default-outside", at, "no situation keeps this default"});
  }
  // Where it never counts, or the parameter is never there, another finding says so.
  if (result.verdict != VERDICT_IMPOSSIBLE || instead.empty()) return;
  proof.add(
      {"default-outside", at, "no situation keeps this default: it becomes \"" + instead + '"'});
}

}  // namespace

void askDefaults(Proof& proof, const Explained& explained) {
  for (const Subject& subject : proof.subjects()) {
    if (subject.parm == nullptr || subject.parm->parm.mode() == MODE_NEVER) continue;
    for (const CompiledStatement& statement : subject.defaults) {
      const CompiledItem& value = statement.items.front();
      const bool isTold = value.text && explained.explainedText(subject, *value.text) != nullptr;
      if (!isTold && !explained.dead.contains(&statement)) askDefault(proof, subject, statement);
    }
  }
}
