#include "sw/parm/parm_def.h"

#include <algorithm>
#include <utility>

#include "sw/parm/parm_name.h"

ParmDef::ParmDef(DefinitionParts parts, ParmParts parmParts)
    : IndexDef(std::move(parts)), parm_(std::move(parmParts)) {
  noteKinds(parm_.documentedRanges);
  for (const IndexDef* index : parm_.indices) {
    std::vector<uint32_t>& slots = indexSlots_.emplace_back();
    for (const std::string& name : index->variables().names()) {
      slots.push_back(ownVariables().slot(name));
    }
  }
  usedNames_ = variables().size();
  for (const IndexDef* index : parm_.indices) {
    nameSlots_.push_back(ownVariables().slot(index->name()));
  }
  hasRunTimeRanges_ =
      std::any_of(conditionalBounds().begin(), conditionalBounds().end(),
                  [](const ConditionalBounds& bounds) { return bounds.computed != nullptr; });
}

bool ParmDef::hasConstraints() const { return hasRunTimeRanges_ || !parm_.constraintRules.empty(); }

bool ParmDef::checkBase(std::string value) const {
  return hasConstraints() || IndexDef::checkBase(std::move(value));
}

bool ParmDef::checkValue(std::string value, const SituationView& situation) const {
  return hasConstraints() || IndexDef::checkValue(std::move(value), situation);
}

bool ParmDef::isReadOnly(const SituationView& situation) const {
  switch (parm_.mode) {
    case MODE_NEVER:
      return true;
    case MODE_WRITE_ONLY:
      return false;
    default:
      return std::any_of(parm_.readOnlyConditions.begin(), parm_.readOnlyConditions.end(),
                         [&](const Program& condition) { return condition.isTrue(situation); });
  }
}

int ParmDef::defaultValue(std::string& value, const IndexTuple& indices,
                          Situation situation) const {
  const size_t pairs = std::min(indices.size(), parm_.indices.size());
  for (size_t i = 0; i < pairs; ++i) {
    bindIndex(situation, i, indices[i]);
  }
  for (const ConditionalDefault& candidate : parm_.defaults) {
    if (!candidate.condition.isTrue(situation)) {
      continue;
    }
    const Value result = candidate.value.evaluate(situation);
    if (result.valid()) {
      value = result.asText();
      return 0;
    }
  }
  value = parm_.fallbackDefault;
  return 1;
}

int ParmDef::range(BoundsParm& out, const SituationView& situation) const {
  for (const auto* list : {&parm_.documentedRanges, &conditionalBounds()}) {
    for (const ConditionalBounds& candidate : *list) {
      if (!candidate.condition.isTrue(situation)) {
        continue;
      }
      if (candidate.computed != nullptr) {
        return candidate.computed->evaluate(out, situation);
      }
      out = *candidate.constant;
      return 0;
    }
  }
  out = baseBounds();
  return 0;
}

void ParmDef::bindIndex(Situation& situation, size_t position, std::string_view value) const {
  situation.bind(nameSlots_[position], operandOf(value));
}

const CommittedValue* ParmDef::committed(const IndexTuple& indices) const {
  if (indices.empty() && parm_.indices.empty()) {
    return &single_;
  }
  const auto found = instances_.find(indexSuffix(indices));
  return found == instances_.end() ? nullptr : &found->second;
}

const std::string& ParmDef::committedText(const IndexTuple& indices) const {
  static const std::string never;
  const CommittedValue* value = committed(indices);
  return value == nullptr ? never : value->value.text();
}

void ParmDef::store(const IndexTuple& indices, const std::string& value) {
  instance(indices).value.set(value);
}

bool ParmDef::announce(const IndexTuple& indices) {
  return !std::exchange(instance(indices).announced, true);
}

CommittedValue& ParmDef::instance(const IndexTuple& indices) {
  if (indices.empty() && parm_.indices.empty()) {
    return single_;
  }
  return instances_[indexSuffix(indices)];
}
