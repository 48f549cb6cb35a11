// The walk over the levels of a plan, which commit and a range query share.
#pragma once

#include <span>

#include "database/plan.h"
#include "sw/parm/set_value.h"

/// What a step comes to where a constraint rule still fails: its level is walked once more.
constexpr int WALK_AGAIN = SET_RULE_FAILS;

/// Walks a level once by `evaluate`, which is given each entry and returns 0, WALK_AGAIN or the
/// code of a refusal. A refusal ends the walk; `passOver` is given each entry behind it. Returns
/// the refusal, or else WALK_AGAIN where a step came to that.
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

/// Walks the levels of a plan, the lowest first, each until no rule fails any more; a refusal does
/// not keep the levels behind its own from being walked. Returns the first refusal, or 0.
template <typename Evaluate, typename PassOver>
int walkLevels(std::span<const PlanStep> plan, Evaluate evaluate, PassOver passOver) {
  int result = 0;
  while (!plan.empty()) {
    const std::span<const PlanStep> level = firstLevel(plan, plan);
    int code = WALK_AGAIN;
    while (code == WALK_AGAIN) code = walkLevel(level, evaluate, passOver);
    if (result == 0) result = code;
  }
  return result;
}
