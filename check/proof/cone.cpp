#include "check/proof/cone.h"

#include <algorithm>
#include <tuple>

#include "base/work.h"
#include "sw/parm/parm_name.h"

namespace {

// How a definition uses each name, for what it takes and whether it is there.
void noteUsesIn(const Subject& subject, NameUses& uses) {
  for (const auto* statements : {&subject.rangeValid, &subject.ctrlValid}) {
    for (const CompiledStatement& statement : *statements) noteUses(statement, uses);
  }
}

}  // namespace

bool refersBack(const VariableSources& sources, const ParmEntry& own) {
  return std::any_of(sources.begin(), sources.end(), [&](const VariableSource& source) {
    return source.parm != nullptr && source.parm->level >= own.level;
  });
}

std::string ConeInstance::name() const { return fullName(parm->parm.name(), indices); }

Cone::Cone(const Goal& goal, const Reader& reader, const CompiledText& text) {
  const Follow movers = [&](const ParmEntry& parm) -> const VariableSources& {
    return text.find(parm.parm.name())->movers;
  };
  build(goal, reader, movers);
  hasRing_ = hasRingIn(movers);
  if (!hasRing_) return;
  instances_.clear();
  places_.clear();
  build(goal, reader, [](const ParmEntry& parm) -> const VariableSources& { return parm.sources; });
}

void Cone::build(const Goal& goal, const Reader& reader, const Follow& followed) {
  for (const Clause& clause : goal.clauses) {
    for (const Wish& wish : clause) {
      forEachExpression(wish, [&](const CompiledExpression& expression) {
        for (const VariableSource& source : expression.sources) add(source, reader);
      });
    }
  }
  addIndices(reader);
  const Subject& subject = *goal.subject;
  if (goal.dependsOnRanges) {
    addAll(subject.parm != nullptr ? subject.parm->sources : subject.index->sources, reader);
  }
  // What is reached is added behind those that are still to be looked at.
  size_t next = 0;
  while (next < instances_.size()) {
    ParmEntry* const parm = instances_[next].parm;
    const Reader own(parm, instances_[next].indices, 0);
    addAll(followed(*parm), own);
    addIndices(own);
    ++next;
  }
  std::stable_sort(instances_.begin(), instances_.end(), [](const auto& a, const auto& b) {
    return std::tie(a.parm->level, a.parm->rank) < std::tie(b.parm->level, b.parm->rank);
  });
  for (size_t i = 0; i < instances_.size(); ++i) {
    places_[{instances_[i].parm, instances_[i].indices}] = i;
  }
}

void Cone::addAll(const VariableSources& sources, const Reader& reader) {
  for (const VariableSource& source : sources) add(source, reader);
}

void Cone::addIndices(const Reader& reader) {
  if (reader.parm() == nullptr) return;
  for (const IndexEntry* const index : reader.parm()->indices->own) {
    indices_.insert(index);
    addAll(index->sources, reader);
  }
}

void Cone::add(const VariableSource& source, const Reader& reader) {
  if (source.parm == nullptr) return;
  IndexTuple indices = reader.indicesOf(source);
  // What is read with too few index values is never there.
  if (indices.size() != source.parm->parm.indices().size()) return;
  Work::add(WORK_PER_REFERENCE);
  if (!places_.try_emplace({source.parm, indices}, instances_.size()).second) return;
  instances_.push_back({source.parm, std::move(indices)});
}

std::vector<std::string> Cone::names() const {
  std::vector<std::string> names;
  for (const ConeInstance& instance : instances_) names.push_back(instance.name());
  return names;
}

const ConeInstance* Cone::find(const VariableSource& source, const Reader& reader) const {
  const auto found = places_.find({source.parm, reader.indicesOf(source)});
  return found == places_.end() ? nullptr : &instances_[found->second];
}

bool Cone::hasRingIn(const Follow& followed) const {
  return std::any_of(instances_.begin(), instances_.end(), [&](const ConeInstance& instance) {
    const ParmEntry& entry = *instance.parm;
    const std::vector<IndexEntry*>& own = entry.indices->own;
    return refersBack(followed(entry), entry) ||
           std::any_of(own.begin(), own.end(),
                       [&](const IndexEntry* index) { return refersBack(index->sources, entry); });
  });
}

void Cone::noteUses(const Goal& goal, const CompiledText& text) {
  NameUses uses;
  for (const Clause& clause : goal.clauses) {
    for (const Wish& wish : clause) {
      forEachExpression(wish, [&](const CompiledExpression& expression) {
        ::noteUses(expression, purposeOf(wish), uses);
      });
    }
  }
  for (const ConeInstance& cone : instances_) noteUsesIn(*text.find(cone.parm->parm.name()), uses);
  for (const IndexEntry* index : indices_) noteUsesIn(*text.find(index->index->name()), uses);
  if (goal.dependsOnRanges) noteUsesIn(*goal.subject, uses);
  // A parameter is used by all names that the text has for its instances.
  std::map<std::string_view, NameUse> byBase;
  for (const auto& [name, use] : uses) addUse(use, byBase[baseName(name)]);
  for (ConeInstance& instance : instances_) instance.use = byBase[instance.parm->parm.name()];
}
