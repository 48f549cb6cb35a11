#include "deflang/text/record.h"

#include "base/put_in_order.h"
#include "base/text_map.h"

std::optional<uint32_t> ParameterRecords::positionOf(std::string_view name) const {
  return positions_.find(TextHash{}(name),
                         [&](uint32_t position) { return records_[position].name == name; });
}

const ParameterRecord* ParameterRecords::find(std::string_view name) const {
  const std::optional<uint32_t> found = positionOf(name);
  return found ? &records_[*found] : nullptr;
}

ParameterRecord* ParameterRecords::find(std::string_view name) {
  // Mostly it is asked for the record that is being read, line after line.
  if (!records_.empty() && records_.back().name == name) return &records_.back();
  const std::optional<uint32_t> found = positionOf(name);
  return found ? &records_[*found] : nullptr;
}

ParameterRecord& ParameterRecords::findOrAdd(std::string_view name, uint32_t line) {
  if (ParameterRecord* const known = find(name)) return *known;
  ParameterRecord& record = records_.emplace_back();
  record.name = memory_.keepText(name);
  record.line = line;
  positions_.add(TextHash{}(name), static_cast<uint32_t>(records_.size() - 1));
  return record;
}

std::vector<const ParameterRecord*> ParameterRecords::inNameOrder() const {
  std::vector<const ParameterRecord*> sorted;
  sorted.reserve(records_.size());
  for (const ParameterRecord& record : records_) sorted.push_back(&record);
  const auto comesBefore = [](const ParameterRecord* a, const ParameterRecord* b) {
    return a->name < b->name;
  };
  putInOrder(sorted, comesBefore);
  return sorted;
}
