#include "database/index_situations.h"

#include "base/work.h"
#include "database/gather.h"

PresentIndex& IndexSituations::at(const ParmEntry& parm, const IndexTuple& indices, size_t place,
                                  const Situation& own) {
  const IndexEntry& entry = *parm.indices->own[place];
  Work::add(entry.index->askingWork());
  if (!entry.isShared) {
    Work::add(entry.index->situationWork());
    return ofInstance_.emplace(*entry.index, gather(entry, parm, indices, own, staged_));
  }
  std::optional<PresentIndex>& shared = shared_[&entry];
  if (shared) return *shared;
  Work::add(entry.index->situationWork());
  return shared.emplace(*entry.index, gather(entry, staged_));
}

void IndexSituations::forget(const ParmEntry& parm) {
  for (const IndexEntry* index : parm.indices->naming) {
    const auto known = shared_.find(index);
    if (known != shared_.end()) known->second.reset();
  }
}
