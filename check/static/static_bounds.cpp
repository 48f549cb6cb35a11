#include "check/static/static_bounds.h"

#include <algorithm>

#include "base/number.h"

namespace {

bool accepts(const BoundsParm& bounds, std::string value) { return bounds.check(value, false); }

bool isAcceptedByOne(const IndexDef& definition, const std::string& value) {
  return std::ranges::any_of(definition.conditionalBounds(), [&](const ConditionalBounds& bounds) {
    return bounds.constant != nullptr && accepts(*bounds.constant, value);
  });
}

// Spans overlap where one of them begins, and texts have to be tried.
bool hasValueOf(const BoundsParm& one, const BoundsParm& other) {
  const auto both = [&](const std::string& value) {
    return accepts(one, value) && accepts(other, value);
  };
  return std::ranges::any_of(one.strings().texts(), both) ||
         std::ranges::any_of(one.integers().spans(),
                             [&](const Span& span) { return both(numberText(span.first)); });
}

}  // namespace

bool hasRunTimeRange(const IndexDef& definition) {
  return std::ranges::any_of(definition.conditionalBounds(), [](const ConditionalBounds& bounds) {
    return bounds.computed != nullptr;
  });
}

bool isOutside(const IndexDef& definition, const std::string& value) {
  if (definition.baseBounds().count() > 0) return !accepts(definition.baseBounds(), value);
  return !definition.conditionalBounds().empty() && !isAcceptedByOne(definition, value);
}

bool isInside(const IndexDef& definition, const std::string& value) {
  if (definition.baseBounds().count() > 0) return accepts(definition.baseBounds(), value);
  return isAcceptedByOne(definition, value);
}

bool shareValue(const BoundsParm& one, const BoundsParm& other) {
  if (one.count() == 0 || other.count() == 0) return true;
  return hasValueOf(one, other) || hasValueOf(other, one);
}
