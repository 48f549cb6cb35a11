#include "sw/parm/present_bounds.h"

#include <algorithm>
#include <utility>

namespace {

// Bounds without entries, which accept every value: they take the place of a run-time range that
// has no values and is to accept.
const BoundsParm EVERYTHING;

}  // namespace

PresentBounds::PresentBounds(std::span<const ConditionalBounds> bounds,
                             const SituationView& situation, UnusableRange unusable) {
  applying_.reserve(bounds.size());
  computed_.reserve(static_cast<size_t>(std::count_if(
      bounds.begin(), bounds.end(),
      [](const ConditionalBounds& candidate) { return candidate.computed != nullptr; })));
  for (const ConditionalBounds& candidate : bounds) {
    if (!candidate.condition.isTrue(situation)) continue;
    if (candidate.computed == nullptr) {
      applying_.push_back(candidate.constant);
      continue;
    }
    BoundsParm present;
    if (candidate.computed->evaluate(present, situation) == 0) {
      applying_.push_back(&computed_.emplace_back(std::move(present)));
    } else if (unusable == UNUSABLE_ACCEPTS) {
      applying_.push_back(&EVERYTHING);
    }
  }
}

bool PresentBounds::judge(std::string& value) const {
  if (applying_.empty()) return false;
  std::string corrected = value;
  if (applying_.front()->check(corrected, true)) return true;
  const bool accepted =
      std::any_of(applying_.begin() + 1, applying_.end(),
                  [&](const BoundsParm* bounds) { return bounds->check(value, false); });
  if (!accepted) value = std::move(corrected);
  return accepted;
}

bool BoundsCheck::accepts(std::string value) {
  definition_.translateTwice(value);
  if (!definition_.baseBounds().check(value, true)) return false;
  if (definition_.conditionalBounds().empty()) return true;
  if (!present_) present_.emplace(definition_.conditionalBounds(), situation_, UNUSABLE_ACCEPTS);
  return present_->judge(value);
}
