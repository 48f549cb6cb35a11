#include "fuzz/instance.h"

#include <algorithm>

#include "database/evaluation.h"
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

bool isSettled(const Instance& instance) {
  static const StagedValues nothingStaged;
  StagedEntry entry;
  entry.parm = instance.parm;
  entry.indices = instance.indices;
  entry.generated = true;
  entry.value.set(committedText(instance));
  const setOutcome_t outcome = evaluate(entry, nothingStaged, true);
  if (outcome.stored) return entry.value.text() == committedText(instance);
  // Not valid, never writable, or not existing in this situation; a refused value is none of them.
  return outcome.result == SET_STORED || outcome.result == SET_NOT_STORED;
}

bool refersToOwnLevel(const ParmEntry& parm) {
  return std::any_of(parm.sources.begin(), parm.sources.end(), [&](const VariableSource& source) {
    return source.parm != nullptr && source.parm->level == parm.level;
  });
}
