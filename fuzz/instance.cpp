#include "fuzz/instance.h"

#include "database/index_values.h"
#include "sw/parm/parm_name.h"

void addInstance(Instances& instances, ParmEntry& parm, const IndexTuple& indices) {
  instances.try_emplace(fullName(parm.parm->name(), indices), Instance{&parm, indices});
}

void addAllInstances(Instances& instances, Database& database, ParmEntry& parm) {
  forEachInstance(database, *parm.parm,
                  [&](const IndexTuple& indices) { addInstance(instances, parm, indices); });
}

const std::string& committedText(const Instance& instance) {
  return instance.parm->parm->committedText(instance.indices);
}
