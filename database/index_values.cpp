#include "database/index_values.h"

#include <algorithm>

#include "base/number.h"

namespace {

std::vector<std::string> valuesOf(const BoundsParm& bounds) {
  std::vector<std::string> values(bounds.strings().texts().begin(), bounds.strings().texts().end());
  for (const Span& span : bounds.integers().spans()) {
    for (int64_t number = span.first; number <= span.second; ++number) {
      values.push_back(numberText(static_cast<int32_t>(number)));
    }
  }
  std::sort(values.begin(), values.end());
  values.erase(std::unique(values.begin(), values.end()), values.end());
  return values;
}

bool hasInstances(const ParmDef& parm) {
  return std::all_of(parm.indices().begin(), parm.indices().end(),
                     [](const IndexDef* index) { return index->baseBounds().count() > 0; });
}

// Moves on to the next combination, the last index first. False after the last one.
bool advance(std::vector<size_t>& places,
             const std::vector<const std::vector<std::string>*>& values) {
  for (size_t i = places.size(); i-- > 0;) {
    if (++places[i] < values[i]->size()) return true;
    places[i] = 0;
  }
  return false;
}

}  // namespace

const std::vector<std::string>& indexValues(IndexEntry& index) {
  if (index.values.empty()) index.values = valuesOf(index.index->baseBounds());
  return index.values;
}

uint64_t countIndexValues(const IndexDef& index) {
  const BoundsParm& bounds = index.baseBounds();
  uint64_t count = bounds.strings().count();
  for (const Span& span : bounds.integers().spans()) {
    count += static_cast<uint64_t>(int64_t{span.second} - span.first) + 1;
  }
  return count;
}

uint64_t countInstances(const ParmDef& parm) {
  if (parm.indices().empty()) return 1;
  // First: one index without values outweighs all the others.
  if (!hasInstances(parm)) return 0;
  uint64_t count = 1;
  for (const IndexDef* index : parm.indices()) {
    if (__builtin_mul_overflow(count, countIndexValues(*index), &count)) return UINT64_MAX;
  }
  return count;
}

void forEachInstance(Database& database, const ParmDef& parm,
                     const std::function<void(const IndexTuple&)>& visit) {
  if (parm.indices().empty()) {
    visit({});
    return;
  }
  // The values of an index are many, and they are not worked out for nothing.
  if (!hasInstances(parm)) return;
  std::vector<const std::vector<std::string>*> values;
  for (const IndexDef* index : parm.indices()) {
    values.push_back(&indexValues(*database.findIndexEntry(index->name())));
  }
  std::vector<size_t> places(values.size(), 0);
  IndexTuple indices(values.size());
  do {
    for (size_t i = 0; i < values.size(); ++i) indices[i] = (*values[i])[places[i]];
    visit(indices);
  } while (advance(places, values));
}
