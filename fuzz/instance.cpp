#include "fuzz/instance.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "database/evaluation.h"
#include "database/gather.h"
#include "database/index_values.h"
#include "sw/parm/parm_name.h"

namespace {

const StagedValues NOTHING_STAGED;

// The empty text counts as 0 where there are spans alone; it is refused, but stays as it is.
bool takes(const BoundsParm& bounds, std::string value) {
  if (bounds.check(value, false)) return true;
  return value.empty() && bounds.strings().count() == 0 && bounds.integers().check(value, false);
}

// The conditional bounds that count in a situation, with what they hold there.
struct CountingBounds {
  CountingBounds(const ParmDef& parm, const Situation& situation) {
    for (const ConditionalBounds& candidate : parm.conditionalBounds()) {
      if (!candidate.condition.isTrue(situation)) continue;
      BoundsParm present;
      if (candidate.computed == nullptr) {
        bounds.push_back(dynamic_cast<const BoundsParm&>(*candidate.bounds));
      } else if (candidate.computed->evaluate(present, situation) == 0) {
        bounds.push_back(std::move(present));
        hasComputed = true;
      } else {
        hasUnusable = true;
      }
    }
  }

  std::vector<BoundsParm> bounds;
  bool hasComputed = false;  // a run-time range that has its values
  bool hasUnusable = false;  // one that lacks a value
};

}  // namespace

void addInstance(Instances& instances, ParmEntry& parm, const IndexTuple& indices) {
  instances.try_emplace(fullName(parm.parm.name(), indices), Instance{&parm, indices});
}

void addAllInstances(Instances& instances, Database& database, ParmEntry& parm) {
  forEachInstance(database, parm.parm,
                  [&](const IndexTuple& indices) { addInstance(instances, parm, indices); });
}

const std::string& committedText(const Instance& instance) {
  return instance.parm->parm.committedText(instance.indices);
}

Situation committedSituation(const Instance& instance) {
  return gatherBound(*instance.parm, instance.indices, NOTHING_STAGED);
}

bool isWithinBounds(const Instance& instance) {
  const ParmDef& parm = instance.parm->parm;
  const std::string& value = committedText(instance);
  const CountingBounds counting(parm, committedSituation(instance));
  const bool inAny = std::any_of(counting.bounds.begin(), counting.bounds.end(),
                                 [&](const BoundsParm& bounds) { return takes(bounds, value); });
  // Run-time ranges take the place of the base bounds. One without values lets everything pass.
  if (counting.hasComputed) return inAny;
  return takes(parm.baseBounds(), value) &&
         (inAny || counting.bounds.empty() || counting.hasUnusable);
}

bool isSettled(const Instance& instance) {
  StagedEntry entry;
  entry.parm = instance.parm;
  entry.indices = instance.indices;
  entry.generated = true;
  entry.value.set(committedText(instance));
  IndexSituations situations(NOTHING_STAGED);
  const SetCode code = evaluate(entry, situations, true);
  if (isAccepted(code)) {
    return entry.value.text() == committedText(instance) && isWithinBounds(instance);
  }
  // Not valid, never writable, or not existing in this situation; a refused value is none of them.
  return code == SET_NOT_STORED;
}

VariableSources allSources(const ParmEntry& parm) {
  VariableSources sources = parm.sources;
  for (const IndexEntry* index : parm.indices->own) {
    sources.insert(sources.end(), index->sources.begin(), index->sources.end());
  }
  return sources;
}

bool refersToOwnLevel(const ParmEntry& parm) {
  const VariableSources sources = allSources(parm);
  return std::any_of(sources.begin(), sources.end(), [&](const VariableSource& source) {
    return source.parm != nullptr && source.parm->level == parm.level;
  });
}
