#include "database/index_query.h"

#include <cstdint>

#include "database/gather.h"
#include "deflang/number.h"

namespace {

Spans acceptedNumbers(const IndexDef& index, const Situation& situation) {
  const Spans& spans = index.baseBounds().integers().spans();
  if (index.isPlain()) {
    return spans;
  }
  BoundsInteger accepted;
  for (const Span& span : spans) {
    for (int64_t number = span.first; number <= span.second; ++number) {
      const auto value = static_cast<int32_t>(number);
      if (index.checkValue(numberText(value), situation)) {
        // A span of one number cannot be refused.
        static_cast<void>(accepted.addSpan(value, value));
      }
    }
  }
  return accepted.spans();
}

}  // namespace

std::vector<std::string> validIndices(Database& database, const StagedValues& staged,
                                      const ParmDef& parm) {
  std::vector<std::string> names;
  for (const IndexDef* index : parm.indices()) {
    if (index->isValid(gather(*database.findIndexEntry(index->name()), staged))) {
      names.push_back(index->name());
    }
  }
  return names;
}

int indexRange(Database& database, const StagedValues& staged, const std::string& name,
               std::vector<std::string>& texts, Spans& spans) {
  const IndexEntry* entry = database.findIndexEntry(name);
  if (entry == nullptr) {
    return INDEX_RANGE_NO_INDEX;
  }
  const IndexDef& index = *entry->index;
  const Situation situation = gather(*entry, staged);
  if (!index.isValid(situation)) {
    return INDEX_RANGE_NOT_VALID;
  }
  spans = acceptedNumbers(index, situation);
  for (const std::string& text : index.baseBounds().strings().texts()) {
    if (index.checkValue(text, situation)) {
      texts.push_back(text);
    }
  }
  return INDEX_RANGE_FOUND;
}
