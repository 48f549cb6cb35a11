#include "sw/parm/constraints.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "sw/parm/parm_name.h"

namespace {

// The situation of the rules: a copy of the parameter's, with the value under test.
class RuleSituation {
 public:
  RuleSituation(const ParmDef& parm, const Situation& situation)
      : situation_(situation), slot_(parm.variables().find(THIS_VALUE)) {}

  // Makes `value` the value under test; it has to stay unchanged until the next call.
  void bind(const std::string& value) {
    if (slot_) situation_.bind(*slot_, operandOf(value));
  }
  [[nodiscard]] bool violates(const ConstraintRule& rule) const {
    return rule.condition.isTrue(situation_) && !rule.test.isTrue(situation_);
  }
  [[nodiscard]] Value correction(const ConstraintRule& rule) const {
    return rule.correction.evaluate(situation_);
  }

 private:
  Situation situation_;
  std::optional<uint32_t> slot_;
};

}  // namespace

Constraints::Constraints(const ParmDef& parm, const Situation& situation)
    : parm_(parm),
      situation_(situation),
      ranges_(
          parm.hasRunTimeRanges() ? parm.conditionalBounds() : std::span<const ConditionalBounds>(),
          situation, UNUSABLE_DROPPED) {}

bool Constraints::apply() const {
  return ranges_.hasComputed() ||
         std::any_of(parm_.constraintRules().begin(), parm_.constraintRules().end(),
                     [&](const ConstraintRule& rule) { return rule.condition.isTrue(situation_); });
}

ConstraintsResult Constraints::correct(std::string& value) const {
  if (!parm_.constraintRules().empty()) {
    const ConstraintsResult result = correctByRules(value);
    if (result != CONSTRAINTS_MET) return result;
  }
  if (ranges_.hasComputed()) {
    parm_.translateTwice(value);
    // The result is ignored: a value that no range accepts is corrected, and that is final.
    static_cast<void>(ranges_.judge(value));
  }
  return CONSTRAINTS_MET;
}

ConstraintsResult Constraints::correctByRules(std::string& value) const {
  RuleSituation situation(parm_, situation_);
  situation.bind(value);
  bool changed = false;
  for (const ConstraintRule& rule : parm_.constraintRules()) {
    if (!situation.violates(rule)) continue;
    const Value correction = situation.correction(rule);
    if (!correction.valid()) {
      value.clear();
      return CONSTRAINTS_NO_VALUE;
    }
    std::string corrected = correction.asText();
    if (corrected != value) {
      value = std::move(corrected);
      situation.bind(value);
      changed = true;
    }
  }
  const bool stillFails =
      changed && std::any_of(parm_.constraintRules().begin(), parm_.constraintRules().end(),
                             [&](const ConstraintRule& rule) { return situation.violates(rule); });
  return stillFails ? CONSTRAINTS_FAIL : CONSTRAINTS_MET;
}
