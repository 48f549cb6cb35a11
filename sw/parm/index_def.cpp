#include "sw/parm/index_def.h"

#include <algorithm>
#include <cassert>
#include <set>
#include <string>
#include <utility>

#include "base/value_limit.h"
#include "sw/parm/present_bounds.h"

void noteKinds(std::span<ConditionalBounds> list) {
  for (ConditionalBounds& entry : list) {
    entry.computed = dynamic_cast<const BoundsExpression*>(entry.bounds.get());
    entry.constant = dynamic_cast<const BoundsParm*>(entry.bounds.get());
    assert(entry.computed != nullptr || entry.constant != nullptr);
  }
}

uint64_t workOf(std::span<const ConditionalBounds> list) {
  uint64_t units = 0;
  for (const ConditionalBounds& entry : list) {
    units += WORK_PER_CANDIDATE + entry.condition.work();
    if (entry.computed != nullptr) units += entry.computed->work();
  }
  return units;
}

uint64_t workOf(std::span<const Program> programs) {
  uint64_t units = 0;
  for (const Program& program : programs) units += program.work();
  return units;
}

namespace {

uint32_t longestOf(const std::set<std::string>& texts) {
  size_t longest = 0;
  for (const std::string& text : texts) longest = std::max(longest, text.size());
  return static_cast<uint32_t>(longest);
}

}  // namespace

IndexDef::IndexDef(DefinitionParts parts)
    : variables_(std::move(parts.variables)),
      validityConditions_(std::move(parts.validityConditions)),
      baseBounds_(std::move(parts.baseBounds)),
      conditionalBounds_(std::move(parts.conditionalBounds)),
      translations_(std::move(parts.translations)),
      name_(std::move(parts.name)) {
  noteKinds(conditionalBounds_);
  judgingWork_ = fittingWork(workOf(validityConditions_.get()) + workOf(conditionalBounds()));
  longestText_ = longestOf(baseBounds_.strings().texts());
}

bool IndexDef::checkBase(std::string value) const {
  if (isTooLong(value)) return false;
  translate(value);
  return baseBounds_.check(value, true);
}

bool IndexDef::checkValue(std::string value, BoundsCheck& check) const {
  return check.accepts(std::move(value));
}

bool IndexDef::isAvailable(const SituationView& situation) const {
  return std::all_of(validityConditions_->begin(), validityConditions_->end(),
                     [&](const Program& condition) { return condition.isTrue(situation); });
}

void IndexDef::translate(std::string& value) const {
  if (translations().empty()) return;
  const auto found = translations().find(value);
  if (found != translations().end()) value = found->second;
}

void IndexDef::translateTwice(std::string& value) const {
  translate(value);
  translate(value);
}

bool correctByBase(const IndexDef& definition, std::string& value) {
  definition.translateTwice(value);
  return definition.baseBounds().check(value, true);
}

bool correctValue(const IndexDef& definition, std::string& value, const SituationView& situation) {
  const bool inBase = correctByBase(definition, value);
  if (definition.conditionalBounds().empty()) return inBase;
  const PresentBounds bounds(definition.conditionalBounds(), situation, UNUSABLE_ACCEPTS);
  return bounds.judge(value) && inBase;
}

bool fitIndices(std::span<const IndexDef* const> indices, const IndexTuple& values) {
  return std::equal(indices.begin(), indices.end(), values.begin(), values.end(),
                    [](const IndexDef* index, const std::string& value) {
                      return index == nullptr || index->checkBase(value);
                    });
}
