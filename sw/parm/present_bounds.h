// Present bounds: which of a definition's conditional bounds apply in a situation, with the
// run-time ranges among them worked out, and the check of values by them.
#pragma once

#include <optional>
#include <span>
#include <string>

#include "base/small_vector.h"
#include "sw/parm/bounds.h"
#include "sw/parm/index_def.h"

/// What becomes of a run-time range one of whose items has no value in the situation.
enum UnusableRange {
  UNUSABLE_DROPPED,  ///< it does not apply
  UNUSABLE_ACCEPTS,  ///< it applies and accepts every value
};

/// The conditional bounds of one definition in one situation. All conditions and run-time ranges
/// are evaluated once, in the constructor; judge() only compares.
///
/// The definition has to outlive the object, which points to its constant bounds; the situation
/// need not. The object is neither copied nor moved, because it points to its own computed bounds
/// too.
class PresentBounds {
 public:
  /// Works out which of `bounds` apply: those whose condition is true. May raise std::bad_alloc or
  /// WorkExceeded. Counts only the work on texts; workOf(bounds) is the rest.
  PresentBounds(std::span<const ConditionalBounds> bounds, const SituationView& situation,
                UnusableRange unusable);
  PresentBounds(const PresentBounds&) = delete;
  PresentBounds& operator=(const PresentBounds&) = delete;

  /// Whether a run-time range applies that has its values. One that UNUSABLE_ACCEPTS lets in
  /// without values does not count.
  [[nodiscard]] bool hasComputed() const { return !computed_.empty(); }
  /// The bounds that apply, in statement order; no pointer is null. Valid as long as the object.
  [[nodiscard]] std::span<const BoundsParm* const> applying() const {
    return {applying_.data(), applying_.size()};
  }
  /// Returns whether any of the applying bounds accepts `value`, which then stays as it is. A value
  /// that none accepts is corrected by the first of them: with 0..9 and 20..29, "30" becomes "9".
  /// Where no bounds apply, every value is refused and left unchanged.
  bool judge(std::string& value) const;

 private:
  SmallVector<const BoundsParm*, 8> applying_;  // in statement order
  // Room for all of them is reserved first: applying_ points to the elements.
  SmallVector<BoundsParm, 2> computed_;
};

/// The full bounds check of one definition in one situation, for many values and without
/// correction. Which of the conditional bounds apply is worked out once, when the first value gets
/// past the base bounds.
///
/// The definition and the situation have to outlive the object and must not change meanwhile.
class BoundsCheck {
 public:
  /// Only keeps references; evaluates nothing yet.
  BoundsCheck(const IndexDef& definition, const SituationView& situation)
      : definition_(definition), situation_(situation) {}
  /// Whether correctValue() would accept `value`, after translation, without a correction. May
  /// raise std::bad_alloc or WorkExceeded.
  [[nodiscard]] bool accepts(std::string value);

 private:
  const IndexDef& definition_;
  SituationView situation_;
  std::optional<PresentBounds> present_;
};
