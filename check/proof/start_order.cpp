#include "check/proof/start_order.h"

#include <algorithm>

#include "sw/parm/parm_name.h"

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
