#include "database/largest_change.h"

#include <algorithm>
#include <tuple>
#include <vector>

#include "base/system_log.h"

namespace {

// Whether a change of a parameter on a lower level brings about all that a change of this one does.
bool followsAnother(const ParmEntry& entry) {
  return std::any_of(entry.sources.begin(), entry.sources.end(), [&](const VariableSource& source) {
    return source.parm != nullptr && source.parm->level < entry.level;
  });
}

bool isLarger(const Extent& a, const Extent& b) {
  return std::tie(a.work, a.instances) > std::tie(b.work, b.instances);
}

}  // namespace

LargestChange findLargestChange(Database& database) {
  const std::vector<ParmEntry*> parms = database.parmsInNameOrder();
  LargestChange largest;
  if (limitPassedBy(extentOf(database, parms)).empty()) return largest;
  size_t walked = 0;
  for (ParmEntry* const parm : parms) {
    if (followsAnother(*parm) || walked > MAX_WALKED_DEPENDENTS) continue;
    const std::vector<ParmEntry*> dependents = dependentsOf(database, {parm});
    walked += dependents.size();
    Extent extent = extentOf(database, dependents);
    extent.work = addedWork(extent.work, parm->parm.evaluationWork());
    if (largest.parm == nullptr || isLarger(extent, largest.extent)) largest = {parm, extent};
  }
  return largest;
}

void reportLargestChange(Database& database) {
  Work::begin();
  const LargestChange largest = findLargestChange(database);
  if (largest.parm == nullptr) return;
  const std::string limit = limitPassedBy(largest.extent);
  if (limit.empty()) return;
  logError("start: ERROR \"" + largest.parm->parm.name() + "\": " + limit);
}
