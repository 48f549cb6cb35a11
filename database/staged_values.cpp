#include "database/staged_values.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <functional>
#include <utility>

#include "base/work.h"
#include "sw/parm/parm_name.h"

namespace {

size_t hashOf(const ParmEntry& parm, const IndexTuple& indices) {
  constexpr uint64_t SPREAD = 0x9e3779b97f4a7c15U;  // 2^64 divided by the golden ratio
  uint64_t hash = (parm.rank + 1) * SPREAD;
  for (const std::string& value : indices) hash = (hash ^ std::hash<std::string>{}(value)) * SPREAD;
  return static_cast<size_t>(hash >> 32U);
}

// An entry that holds the committed value.
StagedEntry newEntry(ParmEntry& parm, const IndexTuple& indices, bool generated,
                     CommittedValue* held) {
  StagedEntry entry;
  entry.parm = &parm;
  entry.indices = indices;
  entry.generated = generated;
  entry.held = held;
  if (held != nullptr) entry.value = held->value;
  return entry;
}

// What an allocation of `bytes` takes.
size_t allocated(size_t bytes) {
  constexpr size_t OVERHEAD = 16;
  return bytes == 0 ? 0 : bytes + OVERHEAD;
}

// The memory of a text outside of the object; short ones are in it.
size_t textBytes(const std::string& text) {
  static const size_t inside = std::string().capacity();
  return text.capacity() > inside ? allocated(text.capacity()) : 0;
}

}  // namespace

std::string fullName(const StagedEntry& entry) {
  return fullName(entry.parm->parm.name(), entry.indices);
}

const std::string& committedText(const StagedEntry& entry) {
  return entry.held != nullptr ? entry.held->value.text()
                               : entry.parm->parm.committedText(entry.indices);
}

bool wasAnnounced(const StagedEntry& entry) {
  const ParmDef& parm = entry.parm->parm;
  const CommittedValue* const held =
      entry.held != nullptr ? entry.held : parm.committed(entry.indices);
  return held != nullptr && held->announced;
}

std::optional<uint32_t> StagedValues::placeOf(const ParmEntry& parm, const IndexTuple& indices,
                                              size_t hash) const {
  return places_.find(hash, [&](uint32_t place) {
    const StagedEntry& entry = entries_[place];
    return entry.parm == &parm && entry.indices == indices;
  });
}

const StagedEntry* StagedValues::find(const ParmEntry& parm, const IndexTuple& indices) const {
  if (!entries_.empty()) {
    const std::optional<uint32_t> here = placeOf(parm, indices, hashOf(parm, indices));
    if (here) return &entries_[*here];
  }
  return below_ == nullptr ? nullptr : below_->find(parm, indices);
}

template <typename Make>
StagedEntry& StagedValues::findOrAdd(const ParmEntry& parm, const IndexTuple& indices,
                                     const Make& make) {
  const size_t hash = hashOf(parm, indices);
  if (const std::optional<uint32_t> known = placeOf(parm, indices, hash)) return entries_[*known];
  // Where memory is exhausted, half an entry must not stay.
  places_.makeRoom();
  StagedEntry& entry = entries_.add(make());
  places_.add(hash, static_cast<uint32_t>(entries_.size() - 1));
  return entry;
}

StagedEntry& StagedValues::stage(ParmEntry& parm, const IndexTuple& indices, bool generated) {
  return findOrAdd(parm, indices, [&] {
    const StagedEntry* const below = below_ == nullptr ? nullptr : below_->find(parm, indices);
    return below != nullptr ? *below
                            : newEntry(parm, indices, generated, parm.parm.committed(indices));
  });
}

StagedEntry& StagedValues::stageNumbered(ParmEntry& parm, const IndexTuple& indices,
                                         size_t number) {
  return findOrAdd(parm, indices, [&] {
    return newEntry(parm, indices, true, parm.parm.committed(indices, number));
  });
}

std::vector<StagedEntry*> StagedValues::inNameOrder() {
  Work::add(entries_.size() * std::bit_width(entries_.size()) * WORK_PER_COMPARISON);
  std::vector<std::pair<std::string, StagedEntry*>> named;
  named.reserve(entries_.size());
  for (size_t i = 0; i < entries_.size(); ++i) {
    StagedEntry& entry = entries_[i];
    named.emplace_back(fullName(entry), &entry);
  }
  std::sort(named.begin(), named.end());
  std::vector<StagedEntry*> entries;
  entries.reserve(named.size());
  for (const auto& [name, entry] : named) entries.push_back(entry);
  return entries;
}

bool StagedValues::hasResets() const {
  for (size_t i = 0; i < entries_.size(); ++i) {
    if (entries_[i].reset) return true;
  }
  return false;
}

size_t StagedValues::bytes() const {
  size_t bytes = allocated(entries_.bytes()) + allocated(places_.bytes());
  for (size_t i = 0; i < entries_.size(); ++i) {
    const StagedEntry& entry = entries_[i];
    bytes += textBytes(entry.value.text()) +
             allocated(entry.indices.capacity() * sizeof(IndexTuple::value_type));
    for (const std::string& value : entry.indices) bytes += textBytes(value);
  }
  return bytes;
}

void StagedValues::clear() {
  entries_ = {};
  places_ = {};
}

Operand StagedValues::value(const ParmEntry& parm, const IndexTuple& indices) const {
  const StagedEntry* staged = find(parm, indices);
  if (staged != nullptr) return staged->value.operand();
  const CommittedValue* committed = parm.parm.committed(indices);
  return committed == nullptr ? operandOf("") : committed->value.operand();
}

const std::string& StagedValues::text(const ParmEntry& parm, const IndexTuple& indices) const {
  const StagedEntry* staged = find(parm, indices);
  return staged != nullptr ? staged->value.text() : parm.parm.committedText(indices);
}
