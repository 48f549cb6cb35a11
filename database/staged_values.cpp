#include "database/staged_values.h"

#include <algorithm>
#include <functional>
#include <utility>

#include "sw/parm/parm_name.h"

std::string fullName(const StagedEntry& entry) {
  return fullName(entry.parm->parm->name(), entry.indices);
}

size_t StagedValues::KeyHash::operator()(const Key& key) const {
  constexpr size_t spread = 0x9e3779b97f4a7c15U;  // 2^64 divided by the golden ratio
  return std::hash<const ParmEntry*>{}(key.parm) * spread ^ std::hash<std::string>{}(key.suffix);
}

const StagedEntry* StagedValues::find(const ParmEntry& parm, const IndexTuple& indices) const {
  if (!entries_.empty()) {
    const auto found = entries_.find(Key{&parm, indexSuffix(indices)});
    if (found != entries_.end()) {
      return &found->second;
    }
  }
  return below_ == nullptr ? nullptr : below_->find(parm, indices);
}

StagedEntry& StagedValues::stage(ParmEntry& parm, const IndexTuple& indices, bool generated) {
  const auto [place, isNew] = entries_.try_emplace(Key{&parm, indexSuffix(indices)});
  if (isNew) {
    // Where memory is exhausted, half an entry must not stay.
    try {
      fill(place->second, parm, indices, generated);
    } catch (...) {
      entries_.erase(place);
      throw;
    }
  }
  return place->second;
}

void StagedValues::fill(StagedEntry& entry, ParmEntry& parm, const IndexTuple& indices,
                        bool generated) const {
  const StagedEntry* below = below_ == nullptr ? nullptr : below_->find(parm, indices);
  if (below != nullptr) {
    entry = *below;
    return;
  }
  entry.parm = &parm;
  entry.indices = indices;
  entry.generated = generated;
  entry.value.set(parm.parm->committedText(indices));
}

std::vector<StagedEntry*> StagedValues::inNameOrder() {
  std::vector<std::pair<std::string, StagedEntry*>> named;
  named.reserve(entries_.size());
  for (auto& [key, entry] : entries_) {
    named.emplace_back(fullName(entry), &entry);
  }
  std::sort(named.begin(), named.end());
  std::vector<StagedEntry*> entries;
  entries.reserve(named.size());
  for (const auto& [name, entry] : named) {
    entries.push_back(entry);
  }
  return entries;
}

void StagedValues::clear() { entries_ = {}; }

Operand StagedValues::value(const ParmEntry& parm, const IndexTuple& indices) const {
  const StagedEntry* staged = find(parm, indices);
  if (staged != nullptr) {
    return staged->value.operand();
  }
  const CommittedValue* committed = parm.parm->committed(indices);
  return committed == nullptr ? operandOf("") : committed->value.operand();
}

const std::string& StagedValues::text(const ParmEntry& parm, const IndexTuple& indices) const {
  const StagedEntry* staged = find(parm, indices);
  return staged != nullptr ? staged->value.text() : parm.parm->committedText(indices);
}
