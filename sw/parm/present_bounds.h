// Present bounds: which of a definition's conditional bounds apply in a situation, with the
// run-time ranges among them worked out, and the check of values by them.
#pragma once

#include <optional>
#include <span>
#include <string>

#include "base/small_vector.h"
#include "sw/parm/bounds.h"
#include "sw/parm/index_def.h"

/// What becomes of a run-time range whose items have no value in the situation.
enum UnusableRange {
  UNUSABLE_DROPPED,  ///< it does not apply
  UNUSABLE_ACCEPTS,  ///< it applies and accepts every value
};

class PresentBounds {
 public:
  PresentBounds(std::span<const ConditionalBounds> bounds, const SituationView& situation,
                UnusableRange unusable);
  PresentBounds(const PresentBounds&) = delete;
  PresentBounds& operator=(const PresentBounds&) = delete;

  /// Whether one of the applying bounds is a run-time range.
  [[nodiscard]] bool hasComputed() const { return !computed_.empty(); }
  /// The bounds that apply, in statement order.
  [[nodiscard]] std::span<const BoundsParm* const> applying() const {
    return {applying_.data(), applying_.size()};
  }
  /// Whether any of the applying bounds accepts `value`; a value that none accepts is corrected by
  /// the first of them. Without applying bounds the value is refused and left unchanged.
  bool judge(std::string& value) const;

 private:
  SmallVector<const BoundsParm*, 8> applying_;  // in statement order
  SmallVector<BoundsParm, 2> computed_;         // never grows beyond what was reserved for it
};

/// The full bounds check of one definition, without correction, in one situation; both stay as they
/// are. Which of the conditional bounds apply is found once, when the first value gets so far.
class BoundsCheck {
 public:
  BoundsCheck(const IndexDef& definition, const SituationView& situation)
      : definition_(definition), situation_(situation) {}
  /// Whether correctValue() would accept `value` as it is.
  [[nodiscard]] bool accepts(std::string value);

 private:
  const IndexDef& definition_;
  SituationView situation_;
  std::optional<PresentBounds> present_;
};
