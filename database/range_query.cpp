#include "database/range_query.h"

#include <algorithm>
#include <cstdint>
#include <vector>

#include "database/dependencies.h"
#include "database/evaluation.h"
#include "database/gather.h"
#include "database/level_walk.h"
#include "database/plan.h"
#include "sw/parm/set_value.h"

namespace {

// The level at which evaluation starts: the target's, or a lower one where something is staged that
// the target depends on, be it under a name that lacks index values.
uint32_t startLevel(const ParmEntry& target, const std::vector<Instance>& instances,
                    const StagedValues& staged) {
  uint32_t level = target.level;
  for (const Instance& instance : instances) {
    if (staged.find(*instance.parm, instance.indices) != nullptr) {
      level = std::min(level, instance.parm->level);
    }
  }
  return level;
}

Plan planQuery(const std::vector<Instance>& instances, uint32_t startLevel, StagedValues& scratch) {
  Plan plan;
  for (const Instance& instance : instances) {
    if (instance.isComplete() && instance.parm->level >= startLevel) {
      StagedEntry& entry = scratch.stage(*instance.parm, instance.indices, true);
      plan.push_back({instance.parm->level, instance.parm->rank, &entry});
    }
  }
  sortPlan(plan);
  return plan;
}

// Visits an entry in the situation in which it is judged.
template <typename Visit>
auto visitEntry(const StagedEntry& entry, IndexSituations& situations, const Visit& visit) {
  return visit(*entry.parm, gatherBound(*entry.parm, entry.indices, situations.staged()));
}

// Returns RANGE_FOUND, RANGE_REFUSED or WALK_AGAIN.
int evaluateEntry(StagedEntry& entry, IndexSituations& situations, const SituationVisit& refused) {
  const SetCode code = evaluate(entry, situations, true);
  if (code == SET_INVALID_VALUE && refused) visitEntry(entry, situations, refused);
  const int result = stepResult(code);
  return result == 0 || result == WALK_AGAIN ? result : RANGE_REFUSED;
}

// Evaluates the target itself, this time with a refusal logged, and asks it in its situation.
template <typename Ask>
int askTarget(StagedEntry& target, IndexSituations& situations, const Ask& ask,
              const SituationVisit& refused) {
  target.generated = false;
  if (evaluateEntry(target, situations, refused) != RANGE_FOUND) return RANGE_REFUSED;
  return visitEntry(target, situations, ask);
}

// `ask(parm, situation)` returns 0, or why there is no answer.
template <typename Ask>
int query(Database& database, const StagedValues& staged, std::string_view name, const Ask& ask,
          const SituationVisit& refused = {}) {
  std::vector<Instance> instances;
  const int found = dependencyInstances(database, name, instances);
  if (found != DEPENDENCIES_FOUND) {
    return found == DEPENDENCIES_TOO_LARGE ? RANGE_TOO_LARGE : RANGE_INVALID_NAME;
  }
  const Instance& target = instances.front();
  StagedValues scratch(&staged);
  const Plan plan = planQuery(instances, startLevel(*target.parm, instances, staged), scratch);
  IndexSituations situations(scratch);
  const int planned = walkLevels(
      plan, [&](StagedEntry& entry) { return evaluateEntry(entry, situations, refused); },
      [](const StagedEntry& /*behind*/) {});
  StagedEntry& entry = scratch.stage(*target.parm, target.indices, true);
  const int result = askTarget(entry, situations, ask, refused);
  return result != RANGE_FOUND ? result : planned;
}

}  // namespace

int queryRange(Database& database, const StagedValues& staged, std::string_view name,
               BoundsParm& out) {
  return query(database, staged, name, [&out](const ParmEntry& parm, const Situation& situation) {
    return parm.parm.range(out, situation);
  });
}

int visitQueried(Database& database, const StagedValues& staged, std::string_view name,
                 const SituationVisit& visit, const SituationVisit& refused) {
  const auto ask = [&visit](const ParmEntry& parm, const Situation& situation) {
    visit(parm, situation);
    return 0;
  };
  return query(database, staged, name, ask, refused);
}
