#include "database/plan.h"

#include <algorithm>
#include <tuple>
#include <utility>

#include "base/put_in_order.h"
#include "base/system_log.h"
#include "base/work.h"
#include "database/index_values.h"

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

// The steps of what is staged. `changing` receives the parameters that others depend on.
Plan planStaged(const std::vector<StagedEntry*>& entries, std::vector<ParmEntry*>& changing) {
  Plan plan;
  for (StagedEntry* entry : entries) {
    const bool hasDependents = entry->parm->hasDependents();
    plan.push_back({hasDependents ? entry->parm->level : 0, entry->parm->rank, entry});
    if (hasDependents && (changing.empty() || changing.back() != entry->parm)) {
      changing.push_back(entry->parm);
    }
  }
  return plan;
}

}  // namespace

uint64_t workOfInstance(const ParmEntry& entry) {
  uint64_t units = entry.parm.evaluationWork();
  for (const IndexEntry* index : entry.indices->own) {
    units += index->index->askingWork() + (index->isShared ? 0 : index->index->situationWork());
  }
  return units;
}

Extent extentOf(Database& database, std::span<ParmEntry* const> parms) {
  const uint32_t walk = database.newWalk();
  Extent extent;
  for (const ParmEntry* entry : parms) {
    const uint64_t instances = countInstances(entry->parm);
    extent.instances = addedWork(extent.instances, instances);
    extent.work = addedWork(extent.work, multipliedWork(instances, workOfInstance(*entry)));
    for (IndexEntry* index : entry->indices->own) {
      const bool isNew = std::exchange(index->walk, walk) != walk;
      if (isNew) extent.work = addedWork(extent.work, index->index->situationWork());
    }
  }
  return extent;
}

std::string limitPassedBy(const Extent& extent) {
  if (extent.instances > MAX_PLANNED_INSTANCES) {
    return std::to_string(extent.instances) + " dependent instances, " +
           std::to_string(MAX_PLANNED_INSTANCES) + " allowed";
  }
  return Work::allows(extent.work) ? ""
                                   : workText(addedWork(Work::done(), extent.work), Work::budget());
}

std::vector<ParmEntry*> dependentsOf(Database& database, std::vector<ParmEntry*> open) {
  const uint32_t walk = database.newWalk();
  std::vector<ParmEntry*> dependents;
  const auto reach = [&](const std::vector<ParmEntry*>& parms) {
    for (ParmEntry* parm : parms) {
      if (std::exchange(parm->walk, walk) != walk) {
        dependents.push_back(parm);
        open.push_back(parm);
      }
    }
  };
  while (!open.empty()) {
    const ParmEntry& parm = *open.back();
    open.pop_back();
    reach(parm.dependents);
    if (!parm.isNamedByIndices) continue;
    for (IndexEntry* index : parm.indices->naming) {
      if (std::exchange(index->walk, walk) != walk) reach(index->dependents);
    }
  }
  std::sort(dependents.begin(), dependents.end(), [](const ParmEntry* a, const ParmEntry* b) {
    return std::tie(a->level, a->rank) < std::tie(b->level, b->rank);
  });
  return dependents;
}

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
  std::vector<ParmEntry*> changing;
  const std::vector<StagedEntry*> entries = staged.inNameOrder();
  Plan plan = planStaged(entries, changing);
  const std::vector<ParmEntry*> dependents = dependentsOf(database, std::move(changing));
  Extent extent = extentOf(database, dependents);
  for (const StagedEntry* entry : entries) {
    extent.work = addedWork(extent.work, workOfInstance(*entry->parm));
  }
  if (const std::string limit = limitPassedBy(extent); !limit.empty()) {
    logError("commit: ERROR \"" + entries.front()->parm->parm.name() + "\": " + limit);
    return std::nullopt;
  }
  const auto instances = static_cast<size_t>(extent.instances);  // within the limit
  staged.makeRoom(instances);
  plan.reserve(plan.size() + instances);
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
