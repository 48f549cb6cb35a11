#include "fuzz/range_watch.h"

#include <algorithm>
#include <set>
#include <vector>

#include "database/dependencies.h"
#include "database/range_query.h"
#include "fuzz/demand.h"
#include "fuzz/instance.h"
#include "sw/parm/parm_name.h"

namespace {

// An instance that does not exist, or a refused value on the way to it: the query has no answer.
const std::string REFUSED = "refused";

std::string rangeText(Database& database, const StagedValues& staged, const std::string& name) {
  BoundsParm range;
  const int result = queryRange(database, staged, name, range);
  if (result == RANGE_REFUSED) return REFUSED;
  if (result != RANGE_FOUND) return "code " + std::to_string(result);
  std::string text;
  for (const Span& span : range.integers().spans()) {
    text += std::to_string(span.first) + ".." + std::to_string(span.second) + " ";
  }
  for (const std::string& allowed : range.strings().texts()) text += '"' + allowed + "\" ";
  return text;
}

// A reset value is worked out at commit; until then the query sees the value that it replaces.
bool hasResets(StagedValues& staged) {
  const std::vector<StagedEntry*> entries = staged.inNameOrder();
  return std::any_of(entries.begin(), entries.end(),
                     [](const StagedEntry* entry) { return entry->reset; });
}

// A commit evaluates every instance that depends on a staged parameter, and so brings in values
// that nobody has ever set. The query evaluates only the instances that lead to its target.
bool areSettled(const Instances& instances) {
  return std::all_of(instances.begin(), instances.end(),
                     [](const auto& entry) { return isSettled(entry.second); });
}

// Parameters that share a level are evaluated once, in name order, and the query walks fewer of
// them than the commit.
bool leadsThroughSharedLevels(Database& database, const std::string& name) {
  std::set<std::string> names = {name};
  static_cast<void>(dependencies(database, name, true, names));
  return std::any_of(names.begin(), names.end(), [&](const std::string& known) {
    const ParmEntry* const parm = database.findParm(baseName(known));
    return parm != nullptr && refersToOwnLevel(*parm);
  });
}

// `instances` are those that a commit takes in by itself. For any other name ("01") the query
// evaluates instances that the commit does not know.
bool isBinding(Database& database, StagedValues& staged, const std::string& name,
               const Instances& instances) {
  return instances.contains(name) && !hasResets(staged) && areSettled(instances) &&
         !leadsThroughSharedLevels(database, name);
}

}  // namespace

RangeWatch::RangeWatch(Database& database, StagedValues& staged, const std::string& name)
    : database_(database), name_(name), range_(rangeText(database, staged, name)) {
  Instances instances;
  for (ParmEntry* parm : database.parmsInNameOrder()) addAllInstances(instances, database, *parm);
  isBinding_ = range_ != REFUSED && isBinding(database, staged, name, instances);
}

void RangeWatch::expectForetold() const {
  if (!isBinding_) return;
  const std::string range = rangeText(database_, StagedValues(), name_);
  demand(range == range_, name_, " has the range ", range, "and not ", range_);
}
