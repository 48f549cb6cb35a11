// Present bounds: which of a definition's conditional bounds apply in a situation, with the
// run-time ranges among them worked out.
#pragma once

#include <string>
#include <vector>

#include "sw/parm/bounds.h"
#include "sw/parm/index_def.h"

/// What becomes of a run-time range whose items have no value in the situation.
enum unusable_t {
  UNUSABLE_DROPPED,  ///< it does not apply
  UNUSABLE_ACCEPTS,  ///< it applies and accepts every value
};

class PresentBounds {
 public:
  PresentBounds(const std::vector<ConditionalBounds>& bounds, const SituationView& situation,
                unusable_t unusable);
  PresentBounds(const PresentBounds&) = delete;
  PresentBounds& operator=(const PresentBounds&) = delete;

  /// Whether one of the applying bounds is a run-time range.
  [[nodiscard]] bool hasComputed() const { return !computed_.empty(); }
  /// The bounds that apply, in statement order.
  [[nodiscard]] const std::vector<const BoundsParm*>& applying() const { return applying_; }
  /// Whether any of the applying bounds accepts `value`; a value that none accepts is corrected by
  /// the first of them. Without applying bounds the value is refused and left unchanged.
  bool judge(std::string& value) const;

 private:
  std::vector<const BoundsParm*> applying_;  // in statement order
  std::vector<BoundsParm> computed_;         // never grows beyond what was reserved for it
};
