#include "check/proof/start_order.h"

#include <algorithm>

#include "check/proof/domain.h"
#include "sw/parm/parm_name.h"

std::vector<IndexTuple> someInstances(const ParmDef& parm, size_t most) {
  std::vector<IndexTuple> tuples = {{}};
  for (const IndexDef* index : parm.indices()) {
    Domain domain;
    domain.add(index->baseBounds());
    std::vector<IndexTuple> longer;
    for (const IndexTuple& tuple : tuples) {
      for (const std::string& value : valuesToTry(domain, most)) {
        if (longer.size() == most) break;
        longer.push_back(tuple);
        longer.back().push_back(value);
      }
    }
    tuples = std::move(longer);
  }
  return tuples;
}

bool findStartOrder(Database& database, const std::string& name, StartOrder& order) {
  order = {};
  if (dependencyInstances(database, name, order.instances) != DEPENDENCIES_FOUND) return false;
  std::ranges::stable_sort(order.instances, {},
                           [](const Instance& instance) { return instance.parm->level; });
  for (const Instance& instance : order.instances) {
    if (!instance.isComplete()) continue;
    order.names.push_back(fullName(instance.parm->parm.name(), instance.indices));
  }
  return true;
}
