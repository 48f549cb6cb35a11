// Level walk: how the steps of a plan are gone through. A commit and a range query share it, so
// that a range is the one that the commit would find.
#pragma once

#include <span>

#include "database/plan.h"
#include "sw/parm/set_value.h"

/// What a step answers where a constraint rule still fails after its corrections: its whole level
/// is walked once more, because what the rule reads may be corrected later in the same level.
constexpr int WALK_AGAIN = SET_RULE_FAILS;

/// What a step answers that has set its value with the result `code`: 0 where there was nothing to
/// refuse, WALK_AGAIN, or the code of the refusal.
constexpr int stepResult(SetCode code) {
  return isAccepted(code) || code == SET_NOT_STORED ? 0 : code;
}

/// Walks the steps of one level once. `evaluate(entry)` returns 0, WALK_AGAIN, or the code of a
/// refusal, which is any other number. A refusal ends the walk of this level: the entries behind it
/// are given to `passOver(entry)` instead, in the same order.
/// Returns the refusal; otherwise WALK_AGAIN where any step answered so; otherwise 0. A refusal
/// counts more than a rule that still fails: the level is then not walked again.
template <typename Evaluate, typename PassOver>
int walkLevel(std::span<const PlanStep> level, Evaluate& evaluate, PassOver& passOver) {
  int result = 0;
  for (size_t i = 0; i < level.size(); ++i) {
    const int code = evaluate(*level[i].entry);
    if (code == WALK_AGAIN) {
      result = WALK_AGAIN;
    } else if (code != 0) {
      for (const PlanStep& behind : level.subspan(i + 1)) passOver(*behind.entry);
      return code;
    }
  }
  return result;
}

/// Walks the levels of a plan, the lowest first, each until no step answers WALK_AGAIN. A level
/// whose rules never agree would never end by itself; the evaluation counts its work, and raises
/// WorkExceeded where the request has used up its budget (base/work.h).
/// A refusal ends its own level only, the higher levels are walked all the same.
/// Returns the first refusal, or 0.
///
/// The commit's `passOver` gives an entry the committed value back, so that dependents are judged
/// with that value; the range query's does nothing, because a query with a refusal has no range.
template <typename Evaluate, typename PassOver>
int walkLevels(std::span<const PlanStep> plan, Evaluate evaluate, PassOver passOver) {
  int result = 0;
  while (!plan.empty()) {
    // What a level corrects, the levels above it read; so each is settled before the next one.
    const std::span<const PlanStep> level = firstLevel(plan, plan);
    int code = WALK_AGAIN;
    while (code == WALK_AGAIN) code = walkLevel(level, evaluate, passOver);
    if (result == 0) result = code;
  }
  return result;
}
