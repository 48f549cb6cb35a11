#include "check/proof/attempt.h"

#include <algorithm>

#include "check/proof/present_value.h"
#include "database/gather.h"
#include "database/index_situations.h"
#include "sw/parm/present_bounds.h"

bool Attempt::isMet() {
  const Goal& goal = question_.goal;
  const auto evaluateNow = [&](const CompiledExpression& e) { return evaluate(e); };
  const bool holds =
      std::all_of(goal.clauses.begin(), goal.clauses.end(), [&](const Clause& clause) {
        return std::any_of(clause.begin(), clause.end(),
                           [&](const Wish& wish) { return comesTrue(wish, evaluateNow); });
      });
  return holds && readerExists() && (!question_.isMet || question_.isMet(reader_.indices()));
}

Value Attempt::evaluate(const CompiledExpression& expression) const {
  return presentValue(expression, reader_, setter_.staged());
}

// Whether the index values of the reader are accepted: all, or those before the index that reads.
bool Attempt::readerExists() {
  ParmEntry* const parm = reader_.parm();
  if (parm == nullptr) return true;
  const IndexTuple& indices = reader_.indices();
  IndexSituations situations(setter_.staged());
  Situation own = gather(*parm, indices, setter_.staged());
  for (size_t place = 0; place < indices.size(); ++place) {
    if (parm->indices->own[place] == question_.goal.subject->index) return true;
    PresentIndex& index = situations.at(*parm, indices, place, own);
    if (!index.isAvailable() || !index.takes(indices[place])) return false;
    parm->parm.bindIndex(own, place, indices[place]);
  }
  return true;
}

bool Attempt::isHealthy() {
  const std::vector<ConeInstance>& instances = cone_.instances();
  return std::all_of(instances.begin(), instances.end(), [&](const ConeInstance& instance) {
    return !instance.held().empty() && setter_.stays(*instance.parm, instance.indices);
  });
}

bool Attempt::isAtRest() {
  const std::vector<ConeInstance>& instances = cone_.instances();
  return std::all_of(instances.begin(), instances.end(), [&](const ConeInstance& instance) {
    return !isThere(instance) ||
           (!instance.held().empty() && setter_.stays(*instance.parm, instance.indices));
  });
}

bool Attempt::isThere(const ConeInstance& instance) {
  std::string value;
  const SetCode code = setter_.set(*instance.parm, instance.indices, value, true);
  return code != SET_NOT_STORED && code != SET_INVALID_INDEX;
}

NameDomain Attempt::presentDomain(const ConeInstance& instance) {
  const ParmDef& parm = instance.parm->parm;
  NameDomain present;
  if (parm.conditionalBounds().empty()) {
    present.values.add(parm.baseBounds());
    return present;
  }
  const Situation situation = gatherBound(*instance.parm, instance.indices, setter_.staged());
  const PresentBounds bounds(parm.conditionalBounds(), situation, UNUSABLE_ACCEPTS);
  const bool isOpen = std::any_of(bounds.applying().begin(), bounds.applying().end(),
                                  [](const BoundsParm* one) { return one->count() == 0; });
  if (isOpen || bounds.applying().empty()) present.values.add(parm.baseBounds());
  for (const BoundsParm* one : bounds.applying()) {
    if (one->count() > 0) present.values.add(*one);
  }
  return present;
}

bool Attempt::isStray(const ConeInstance& instance, const NameDomain& present) {
  return present.values.isAll() && !instance.parm->parm.conditionalBounds().empty();
}

bool Attempt::isAstray() {
  const std::vector<ConeInstance>& instances = cone_.instances();
  return std::any_of(instances.begin(), instances.end(), [&](const ConeInstance& instance) {
    return instance.parm != question_.goal.subject->parm &&
           isStray(instance, presentDomain(instance));
  });
}

NamedValues Attempt::situation() const {
  NamedValues values;
  for (const ConeInstance& instance : cone_.instances()) {
    values.emplace_back(instance.name(), instance.held());
  }
  return values;
}
