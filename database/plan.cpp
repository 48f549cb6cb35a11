#include "database/plan.h"

#include <algorithm>
#include <tuple>
#include <utility>

#include "database/index_values.h"
#include "deflang/put_in_order.h"

namespace {

bool comesBefore(const PlanStep& a, const PlanStep& b) {
  if (a.level != b.level || a.rank != b.rank) {
    return std::tie(a.level, a.rank) < std::tie(b.level, b.rank);
  }
  return a.entry->indices < b.entry->indices;
}

bool isSame(const PlanStep& a, const PlanStep& b) {
  return a.level == b.level && a.entry == b.entry;
}

// Every parameter that depends on one of `open`, each once, in the order of a plan.
std::vector<ParmEntry*> dependentsOf(Database& database, std::vector<ParmEntry*> open) {
  const uint32_t walk = database.newWalk();
  std::vector<ParmEntry*> dependents;
  while (!open.empty()) {
    const ParmEntry& parm = *open.back();
    open.pop_back();
    for (ParmEntry* dependent : parm.dependents) {
      if (std::exchange(dependent->walk, walk) != walk) {
        dependents.push_back(dependent);
        open.push_back(dependent);
      }
    }
  }
  std::sort(dependents.begin(), dependents.end(), [](const ParmEntry* a, const ParmEntry* b) {
    return std::tie(a->level, a->rank) < std::tie(b->level, b->rank);
  });
  return dependents;
}

// How many instances `parms` have together; nothing where they are too many to be planned.
std::optional<size_t> plannedInstances(const std::vector<ParmEntry*>& parms) {
  uint64_t count = 0;
  const bool areTooMany = std::any_of(parms.begin(), parms.end(), [&](const ParmEntry* parm) {
    return __builtin_add_overflow(count, countInstances(parm->parm), &count) ||
           count > MAX_PLANNED_INSTANCES;
  });
  return areTooMany ? std::nullopt : std::optional<size_t>(count);
}

}  // namespace

void sortPlan(Plan& plan) {
  putInOrder(plan, comesBefore);
  plan.erase(std::unique(plan.begin(), plan.end(), isSame), plan.end());
}

std::span<const PlanStep> firstLevel(std::span<const PlanStep> plan,
                                     std::span<const PlanStep>& rest) {
  const auto end = std::find_if(plan.begin(), plan.end(), [&](const PlanStep& step) {
    return step.level != plan.front().level;
  });
  const auto count = static_cast<size_t>(end - plan.begin());
  rest = plan.subspan(count);
  return plan.first(count);
}

std::optional<Plan> planCommit(Database& database, StagedValues& staged) {
  Plan plan;
  std::vector<ParmEntry*> changing;
  for (StagedEntry* entry : staged.inNameOrder()) {
    const bool hasDependents = !entry->parm->dependents.empty();
    plan.push_back({hasDependents ? entry->parm->level : 0, entry->parm->rank, entry});
    if (hasDependents && (changing.empty() || changing.back() != entry->parm)) {
      changing.push_back(entry->parm);
    }
  }
  const std::vector<ParmEntry*> dependents = dependentsOf(database, std::move(changing));
  const std::optional<size_t> count = plannedInstances(dependents);
  if (!count) {
    return std::nullopt;
  }
  staged.makeRoom(*count);
  plan.reserve(plan.size() + *count);
  for (ParmEntry* dependent : dependents) {
    size_t number = 0;
    forEachInstance(database, dependent->parm, [&](const IndexTuple& indices) {
      StagedEntry& entry = staged.stageNumbered(*dependent, indices, number++);
      plan.push_back({dependent->level, dependent->rank, &entry});
    });
  }
  sortPlan(plan);
  return plan;
}
