#include "deflang/text/record.h"

#include "base/put_in_order.h"
#include "base/text_map.h"

std::optional<uint32_t> ParameterRecords::placeOf(std::string_view name) const {
  return places_.find(TextHash{}(name),
                      [&](uint32_t place) { return records_[place].name == name; });
}

const ParameterRecord* ParameterRecords::find(std::string_view name) const {
  const std::optional<uint32_t> found = placeOf(name);
  return found ? &records_[*found] : nullptr;
}

ParameterRecord* ParameterRecords::find(std::string_view name) {
  // Mostly it is asked for the record that is being read, line after line.
  if (!records_.empty() && records_.back().name == name) return &records_.back();
  const std::optional<uint32_t> found = placeOf(name);
  return found ? &records_[*found] : nullptr;
}

ParameterRecord& ParameterRecords::findOrAdd(std::string_view name, uint32_t line) {
  if (ParameterRecord* const known = find(name)) return *known;
  ParameterRecord& record = records_.emplace_back();
  record.name = arena_.keepText(name);
  record.line = line;
  places_.add(TextHash{}(name), static_cast<uint32_t>(records_.size() - 1));
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
