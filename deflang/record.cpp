#include "deflang/record.h"

#include <algorithm>

const ParameterRecord* ParameterRecords::find(std::string_view name) const {
  const auto found = byName_.find(name);
  return found == byName_.end() ? nullptr : found->second;
}

ParameterRecord* ParameterRecords::find(std::string_view name) {
  const auto found = byName_.find(name);
  return found == byName_.end() ? nullptr : found->second;
}

ParameterRecord& ParameterRecords::findOrAdd(std::string_view name, uint32_t line) {
  if (ParameterRecord* const known = find(name)) return *known;
  ParameterRecord& record = records_.emplace_back();
  record.name = name;
  record.line = line;
  byName_.emplace(record.name, &record);
  return record;
}

std::vector<const ParameterRecord*> ParameterRecords::inNameOrder() const {
  std::vector<const ParameterRecord*> sorted;
  sorted.reserve(records_.size());
  for (const ParameterRecord& record : records_) sorted.push_back(&record);
  std::sort(sorted.begin(), sorted.end(),
            [](const ParameterRecord* a, const ParameterRecord* b) { return a->name < b->name; });
  return sorted;
}
