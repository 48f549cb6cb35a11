// What a commit and its trial have in common: the same staged values, the same plan, the same walk.
#pragma once

#include <span>
#include <string>

#include "base/work.h"
#include "database/evaluation.h"
#include "database/level_walk.h"
#include "database/plan.h"

/// Gives an entry that is a reset its default, with the values of `staged`. Counts the work.
void resolveReset(StagedEntry& entry, const StagedValues& staged);
/// Gives each staged reset its default, in the order of names: each is worked out with the values
/// that those before it got. Counts the work.
void resolveResets(StagedValues& staged);

/// Puts a copy of each entry of `staged` into `copies`, which is on top of it: so a commit can be
/// gone through without changing what is staged. Counts the work.
void copyStaged(StagedValues& staged, StagedValues& copies);

/// Whether clients are told of a value that an instance of `parm` takes: it is `before` no more, or
/// nobody was ever told, or each write is told. A "rostrict" parameter is never asked about.
[[nodiscard]] bool isReported(const ParmDef& parm, bool wasAnnounced, const std::string& value,
                              const std::string& before);

/// Walks a plan in the order of its levels. `step(entry, situations)` evaluates one entry; it
/// returns 0, WALK_AGAIN or a refusal, which leaves what is behind it in its level as if it had not
/// been staged; `note(entry)` is called for each of these. Returns the first refusal, or 0.
template <typename Step, typename Note>
int walkCommit(std::span<const PlanStep> plan, const StagedValues& staged, const Step& step,
               const Note& note) {
  IndexSituations situations(staged);
  return walkLevels(
      plan, [&](StagedEntry& entry) { return step(entry, situations); },
      [&](StagedEntry& behind) {
        Work::addSpent(WORK_PER_INSTANCE);  // for its place in the plan
        takeCommitted(behind, situations);
        note(behind);
      });
}

/// The same without notes.
template <typename Step>
int walkCommit(std::span<const PlanStep> plan, const StagedValues& staged, const Step& step) {
  return walkCommit(plan, staged, step, [](const StagedEntry& /*behind*/) {});
}
