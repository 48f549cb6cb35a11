#include "database/present_instances.h"

#include <algorithm>
#include <optional>

#include "base/number.h"
#include "base/system_log.h"
#include "base/work.h"
#include "database/gather.h"
#include "database/index_query.h"
#include "database/instance_state.h"

namespace {

// The numbers, then the texts that are none of them.
std::vector<std::string> listed(const Spans& spans, const auto& texts) {
  std::vector<std::string> values;
  for (const Span& span : spans) {
    for (int64_t number = span.first; number <= span.second; ++number) {
      Work::add(WORK_PER_INDEX);
      values.push_back(numberText(static_cast<int32_t>(number)));
    }
  }
  const auto isListed = [&](const std::string& text) {
    const std::optional<int32_t> number = wholeNumber(text);
    return number && numberText(*number) == text &&
           std::ranges::any_of(spans, [&](const Span& span) {
             return span.first <= *number && *number <= span.second;
           });
  };
  for (const std::string& text : texts) {
    if (!isListed(text)) values.push_back(text);
  }
  return values;
}

// What an index takes that is the same for all instances.
std::vector<std::string> presentValues(const IndexEntry& entry, const StagedValues& staged) {
  const IndexDef& index = *entry.index;
  Work::add(3 * index.situationWork());
  const Situation situation = gather(entry, staged);
  if (!index.isAvailable(situation)) return {};
  std::vector<std::string> texts;
  Spans spans;
  if (acceptedValues(index, situation, texts, spans) != INDEX_RANGE_FOUND) throw WorkExceeded();
  return listed(spans, texts);
}

}  // namespace

bool PresentInstances::visit(const ParmEntry& parm, const Visit& visit) {
  const LogRedirection silence([](const std::string& /*line*/) {});
  Work::spendOn(parm.parm.name());
  if (parm.parm.mode() == MODE_NEVER) return true;
  IndexTuple indices(parm.parm.indices().size());
  return visitFrom(parm, 0, indices, visit);
}

// Of an index that is not the same for all instances, all values of its base bounds: each instance
// is asked by itself.
const PresentInstances::Values& PresentInstances::valuesAt(const ParmEntry& parm, size_t place) {
  const IndexEntry& index = *parm.indices->own[place];
  const auto [known, isNew] = values_.try_emplace(&index);
  if (isNew) {
    const BoundsParm& base = index.index->baseBounds();
    known->second = index.isShared ? presentValues(index, situations_.staged())
                                   : listed(base.integers().spans(), base.strings().texts());
  }
  return known->second;
}

bool PresentInstances::visitFrom(const ParmEntry& parm, size_t place, IndexTuple& indices,
                                 const Visit& visit) {
  if (place == indices.size()) {
    return !existsIn(parm, indices, situations_) || visit(parm.parm.name() + indexSuffix(indices));
  }
  for (const std::string& value : valuesAt(parm, place)) {
    indices[place] = value;
    if (!visitFrom(parm, place + 1, indices, visit)) return false;
  }
  return true;
}
