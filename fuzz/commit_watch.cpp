#include "fuzz/commit_watch.h"

#include <algorithm>
#include <vector>

#include "fuzz/demand.h"
#include "sw/parm/present_bounds.h"

namespace {

// Translations act on whatever enters a parameter, and a correction or a target may be the source
// of one: entering again, the value goes on along the translations.
bool isTranslated(const ParmDef& parm, const std::string& value) {
  std::string translated = value;
  parm.translateTwice(translated);
  return translated != value;
}

// A number in quotes may be the correction of a text, but beside spans it is then held, as every
// number is, against the spans alone.
bool isNumberAmongTexts(const ParmDef& parm, const Situation& situation, const std::string& value) {
  const auto holds = [&](const BoundsParm& bounds) {
    return bounds.strings().texts().contains(value) && bounds.integers().count() > 0;
  };
  if (operandOf(value).kind != OPERAND_NUMBER) return false;
  if (holds(parm.baseBounds())) return true;
  return std::any_of(parm.conditionalBounds().begin(), parm.conditionalBounds().end(),
                     [&](const ConditionalBounds& bounds) {
                       BoundsParm present;
                       if (bounds.computed != nullptr) {
                         return bounds.computed->evaluate(present, situation) == 0 &&
                                holds(present);
                       }
                       return holds(dynamic_cast<const BoundsParm&>(*bounds.bounds));
                     });
}

// Where a parameter has run-time ranges, none of which has values just now, its base bounds correct
// a value but cannot refuse it. If its other conditional bounds and its base bounds contradict each
// other, each takes the value away from the other.
bool isContradicted(const ParmDef& parm, const Situation& situation, const std::string& value) {
  if (!parm.hasRunTimeRanges()) return false;
  const PresentBounds present(parm.conditionalBounds(), situation, UNUSABLE_DROPPED);
  std::string corrected = value;
  return !present.hasComputed() && !parm.baseBounds().check(corrected, true);
}

}  // namespace

CommitWatch::CommitWatch(Database& database, StagedValues& staged, const Instances& all) {
  for (ParmEntry* parm : database.parmsInNameOrder()) addAllInstances(enumerated_, database, *parm);
  for (const auto& [name, instance] : all) before_.emplace(name, committedText(instance));
  for (const StagedEntry* entry : staged.inNameOrder()) {
    const std::string name = fullName(*entry);
    isForced_.emplace(name, entry->force);
    stagedParms_.insert(entry->parm);
    addInstance(evaluated_, *entry->parm, entry->indices);
  }
  addDependents(database);
  for (const auto& [name, instance] : all) {
    if (!evaluated_.contains(name) && isSettled(instance)) settledBefore_.emplace(name, instance);
  }
}

void CommitWatch::addDependents(Database& database) {
  std::set<const ParmEntry*> reached;
  std::vector<const ParmEntry*> open(stagedParms_.begin(), stagedParms_.end());
  while (!open.empty()) {
    const ParmEntry& parm = *open.back();
    open.pop_back();
    const auto reach = [&](const std::vector<ParmEntry*>& dependents) {
      for (ParmEntry* dependent : dependents) {
        if (!reached.insert(dependent).second) continue;
        addAllInstances(evaluated_, database, *dependent);
        open.push_back(dependent);
      }
    };
    reach(parm.dependents);
    for (const IndexEntry* index : parm.indices->naming) reach(index->dependents);
  }
}

void CommitWatch::expectOnlyPlannedChanged(const Instances& all) const {
  for (const auto& [name, instance] : all) {
    if (evaluated_.contains(name)) continue;
    demand(committedText(instance) == before(name), name, " changed outside the plan");
  }
}

void CommitWatch::expectSettled() const {
  for (const auto& [name, instance] : evaluated_) {
    demand(isSettled(instance) || isExempt(name, instance), name, " is not settled on \"",
           committedText(instance), "\"");
  }
  for (const auto& [name, instance] : settledBefore_) {
    demand(isSettled(instance) || isBeyondThePlan(name, instance), name,
           " is settled no more on \"", committedText(instance), "\"");
  }
}

bool CommitWatch::isExempt(const std::string& name, const Instance& instance) const {
  const ParmDef& parm = instance.parm->parm;
  const std::string& value = committedText(instance);
  const Situation situation = committedSituation(instance);
  return isTranslated(parm, value) || isNumberAmongTexts(parm, situation, value) ||
         isContradicted(parm, situation, value) || wasRefusedToClient(name, instance) ||
         hasMovingPartner(instance) || isBeyondThePlan(name, instance);
}

// What a client stages without force for a read-only parameter is not written, and nothing else is
// written in its place: the parameter keeps what it holds, also when its range moves in the same
// commit.
bool CommitWatch::wasRefusedToClient(const std::string& name, const Instance& instance) const {
  const auto staged = isForced_.find(name);
  return staged != isForced_.end() && !staged->second &&
         instance.parm->parm.isReadOnly(committedSituation(instance));
}

// Parameters that refer to each other, or a parameter to itself, share a level and are evaluated
// once, one after the other: what moves, or is withdrawn, after somebody looked at it is not looked
// at again.
bool CommitWatch::hasMovingPartner(const Instance& instance) const {
  const auto moved = [this](const ParmEntry* parm) {
    return stagedParms_.contains(parm) ||
           std::any_of(evaluated_.begin(), evaluated_.end(), [&](const auto& entry) {
             return entry.second.parm == parm && committedText(entry.second) != before(entry.first);
           });
  };
  const VariableSources sources = allSources(*instance.parm);
  return std::any_of(sources.begin(), sources.end(), [&](const VariableSource& source) {
    return source.parm != nullptr && source.parm->level == instance.parm->level &&
           moved(source.parm);
  });
}

// A commit makes its plan from the values that the indices' base bounds name. An instance that a
// client has named in another way ("01") is only evaluated as staged, which may be on level 0,
// before what it depends on.
bool CommitWatch::isBeyondThePlan(const std::string& name, const Instance& instance) const {
  if (enumerated_.contains(name)) return false;
  const VariableSources sources = allSources(*instance.parm);
  return std::any_of(sources.begin(), sources.end(),
                     [](const VariableSource& source) { return source.parm != nullptr; });
}
