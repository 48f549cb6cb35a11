#include "sw/parm/build/build_conditions.h"

#include <utility>

#include "sw/parm/build/classify.h"

namespace {

// Compares the constant conditions among the statements of one kind, and reports the later of two.
// A condition that names a command-line constant is not compared: it tells product variants apart.
class ConstantConditions {
 public:
  explicit ConstantConditions(DefinitionDraft& draft) : draft_(draft) {}

  void compare(const Expression& expression, const Condition& condition) {
    if (condition.namesConstant) return;
    const bool isZero = condition.kind == CONDITION_NEVER;
    bool& seen = isZero ? zeroSeen_ : nonZeroSeen_;
    const bool oppositeSeen = isZero ? nonZeroSeen_ : zeroSeen_;
    const Position at = tokenPosition(expression, 1);
    if (seen) {
      draft_.warn(isZero ? DIAG_CONDITIONS_ZERO : DIAG_CONDITIONS_NON_ZERO, at);
    } else if (oppositeSeen) {
      draft_.error(DIAG_CONFLICTING_CONDITIONS, at);
    }
    seen = true;
  }

 private:
  DefinitionDraft& draft_;
  bool zeroSeen_ = false;
  bool nonZeroSeen_ = false;
};

void neverValid(const Expression& expression, const Condition& condition, DefinitionDraft& draft) {
  draft.parts.validityConditions.push_back(Program::constant(0));
  draft.parm.mode = MODE_NEVER;
  if (!condition.namesConstant) draft.warn(DIAG_CONDITION_ZERO, tokenPosition(expression, 1));
}

}  // namespace

void buildReadOnlyConditions(DefinitionDraft& draft) {
  std::vector<Program>& conditions = draft.parm.readOnlyConditions;
  const AccessCode access = draft.record().access;
  if (access == ACCESS_RO || access == ACCESS_ROSTRICT) {
    conditions.push_back(Program::constant(1));
    draft.lines.readOnly.push_back(draft.lines.definition);
  }
  ConstantConditions constants(draft);
  for (const auto& expression : draft.record().ctrlRO) {
    Condition condition = classifyControl(expression, draft);
    switch (condition.kind) {
      case CONDITION_RUN_TIME:
        conditions.push_back(draft.keep(expression, std::move(condition.compiled)));
        draft.lines.readOnly.push_back(expression.place);
        break;
      case CONDITION_ALWAYS:
        conditions.push_back(Program::constant(1));
        draft.lines.readOnly.push_back(expression.place);
        constants.compare(expression, condition);
        break;
      case CONDITION_NEVER:
        constants.compare(expression, condition);
        break;
      case CONDITION_LEFT_OUT:
        break;
    }
  }
}

void buildValidityConditions(DefinitionDraft& draft) {
  ConstantConditions constants(draft);
  for (const auto& expression : draft.record().ctrlValid) {
    Condition condition = classifyControl(expression, draft);
    switch (condition.kind) {
      case CONDITION_RUN_TIME:
        draft.parts.validityConditions.push_back(
            draft.keep(expression, std::move(condition.compiled)));
        draft.lines.validity.push_back(expression.place);
        break;
      case CONDITION_ALWAYS:
        constants.compare(expression, condition);
        break;
      case CONDITION_NEVER:
        neverValid(expression, condition, draft);
        draft.lines.validity.push_back(expression.place);
        constants.compare(expression, condition);
        break;
      case CONDITION_LEFT_OUT:
        break;
    }
  }
}
