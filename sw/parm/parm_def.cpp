#include "sw/parm/parm_def.h"

#include <algorithm>
#include <cassert>
#include <cstddef>
#include <optional>
#include <utility>

#include "base/value_limit.h"
#include "sw/parm/parm_name.h"

namespace {

// Whether a name and a value behind it take the space of two lines of the cache at most: see
// ParmDef::indexing_.
[[maybe_unused]] bool areNeighbours(const std::string& name, const CommittedValue& value) {
  constexpr std::ptrdiff_t CACHE_LINE = 64;
  const auto* const begin = reinterpret_cast<const char*>(&name);
  const auto* const end = reinterpret_cast<const char*>(&value + 1);
  return begin < end && end - begin <= 2 * CACHE_LINE;
}

}  // namespace

std::string_view accessText(AccessWord word) {
  static constexpr std::string_view TEXTS[] = {"rw", "ro", "rostrict", "wo"};
  return TEXTS[word];
}

ParmDef::ParmDef(DefinitionParts parts, ParmParts parmParts)
    : IndexDef(std::move(parts)),
      mode_(parmParts.mode),
      access_(parmParts.access),
      fallbackDefault_(std::move(parmParts.fallbackDefault)),
      defaults_(std::move(parmParts.defaults)),
      readOnlyConditions_(std::move(parmParts.readOnlyConditions)),
      constraintRules_(std::move(parmParts.constraintRules)),
      documentedRanges_(std::move(parmParts.documentedRanges)) {
  assert(areNeighbours(name(), single_));
  if (!documentedRanges_->empty()) noteKinds(documentedRanges_.change());
  if (!parmParts.indices.empty()) takeIndices(std::move(parmParts.indices));
  hasRunTimeRanges_ =
      std::any_of(conditionalBounds().begin(), conditionalBounds().end(),
                  [](const ConditionalBounds& bounds) { return bounds.computed != nullptr; });
  evaluationWork_ = fittingWork(countEvaluationWork());
}

uint64_t ParmDef::countEvaluationWork() const {
  uint64_t units = WORK_PER_INSTANCE + judgingWork() + usedNames() * WORK_PER_NAME +
                   workOf(readOnlyConditions_.get());
  for (const IndexDef* index : indices()) units += WORK_PER_INDEX + index->textWork();
  for (const ConstraintRule& rule : constraintRules()) {
    units += 2 * (rule.condition.work() + rule.test.work()) + rule.correction.work();
  }
  return units;
}

void ParmDef::takeIndices(std::vector<const IndexDef*> indices) {
  Indexing& indexing = indexing_.change();
  indexing.indices = std::move(indices);
  indexing.usedNames = static_cast<uint32_t>(variables().size());
  for (const IndexDef* index : indexing.indices) {
    indexing.nameSlots.push_back(ownVariables().intern(index->name()));
  }
}

bool ParmDef::hasConstraints() const { return hasRunTimeRanges_ || !constraintRules().empty(); }

bool ParmDef::checkBase(std::string value) const {
  if (isTooLong(value)) return false;
  return hasConstraints() || IndexDef::checkBase(std::move(value));
}

bool ParmDef::checkValue(std::string value, BoundsCheck& check) const {
  return hasConstraints() || IndexDef::checkValue(std::move(value), check);
}

bool ParmDef::isReadOnly(const SituationView& situation) const {
  switch (mode_) {
    case MODE_NEVER:
      return true;
    case MODE_WRITE_ONLY:
      return false;
    default:
      break;
  }
  return std::any_of(readOnlyConditions_->begin(), readOnlyConditions_->end(),
                     [&](const Program& condition) { return condition.isTrue(situation); });
}

const ConditionalDefault* ParmDef::decidingDefault(const SituationView& situation,
                                                   Value& result) const {
  for (const ConditionalDefault& candidate : defaults_) {
    Work::add(candidate.condition.work() + candidate.value.work());
    if (!candidate.condition.isTrue(situation)) continue;
    result = candidate.value.evaluate(situation);
    if (result.valid()) return &candidate;
  }
  return nullptr;
}

int ParmDef::defaultValue(std::string& value, const SituationView& situation) const {
  Value result;
  const bool isDecided = decidingDefault(situation, result) != nullptr;
  value = isDecided ? result.asText() : fallbackDefault_;
  return isDecided ? 0 : 1;
}

const ConditionalBounds* ParmDef::decidingRange(const SituationView& situation) const {
  for (const auto& list : {std::span(documentedRanges_.get()), conditionalBounds()}) {
    Work::add(workOf(list));
    for (const ConditionalBounds& candidate : list) {
      if (candidate.condition.isTrue(situation)) return &candidate;
    }
  }
  return nullptr;
}

int ParmDef::range(BoundsParm& out, const SituationView& situation) const {
  const ConditionalBounds* const found = decidingRange(situation);
  if (found != nullptr && found->computed != nullptr) {
    return found->computed->evaluate(out, situation);
  }
  out = found != nullptr ? *found->constant : baseBounds();
  return 0;
}

void ParmDef::bindIndex(Situation& situation, size_t place, std::string_view value) const {
  const uint32_t slot = indexing_->nameSlots[place];
  // An index value that no expression uses is only printed, so it need not be converted.
  const bool isUsed = slot < indexing_->usedNames;
  situation.bind(slot, isUsed ? operandOf(value) : Operand{OPERAND_STRING, 0, value});
}

void ParmDef::bindIndices(Situation& situation, const IndexTuple& indices) const {
  const size_t pairs = std::min(indices.size(), this->indices().size());
  for (size_t i = 0; i < pairs; ++i) bindIndex(situation, i, indices[i]);
}

const CommittedValue* ParmDef::committed(const IndexTuple& indices) const {
  if (indices.empty() && this->indices().empty()) return &single_;
  const std::optional<uint32_t> found = indexing_->suffixes.find(indexSuffix(indices));
  return found ? &indexing_->values[*found] : nullptr;
}

// The object is not constant here, so its values are not either: the cast only takes back what
// as_const() has added.
CommittedValue* ParmDef::committed(const IndexTuple& indices) {
  return const_cast<CommittedValue*>(std::as_const(*this).committed(indices));
}

CommittedValue* ParmDef::committed(const IndexTuple& indices, size_t number) {
  if (indices.empty()) return committed(indices);
  std::vector<CommittedValue*>& numbered = indexing_.change().numbered;
  if (number < numbered.size() && numbered[number] != nullptr) return numbered[number];
  CommittedValue* const found = committed(indices);
  if (found != nullptr) {
    numbered.resize(std::max(numbered.size(), number + 1));
    numbered[number] = found;
  }
  return found;
}

const std::string& ParmDef::committedText(const IndexTuple& indices) const {
  static const std::string never;
  const CommittedValue* value = committed(indices);
  return value == nullptr ? never : value->value.text();
}

void ParmDef::store(const IndexTuple& indices, const std::string& value) {
  stored(indices).value.set(value);
}

void ParmDef::forgetValues() {
  single_ = CommittedValue();
  if (indices().empty()) return;
  SegmentedList<CommittedValue>& values = indexing_.change().values;
  for (size_t i = 0; i < values.size(); ++i) values[i] = CommittedValue();
}

CommittedValue& ParmDef::stored(const IndexTuple& indices) {
  if (indices.empty() && this->indices().empty()) return single_;
  const std::string suffix = indexSuffix(indices);
  Indexing& indexing = indexing_.change();
  if (const std::optional<uint32_t> known = indexing.suffixes.find(suffix)) {
    return indexing.values[*known];
  }
  // The value is added first, the suffix second. Where memory runs out in between, the value stays
  // without a suffix, and the next new instance takes it.
  const size_t number = indexing.suffixes.size();
  if (indexing.values.size() == number) indexing.values.add({});
  return indexing.values[indexing.suffixes.intern(suffix)];
}
