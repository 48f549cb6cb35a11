// Present indices: what an index is in one situation.
#pragma once

#include <cstddef>
#include <string>
#include <utility>

#include "deflang/expression/variables.h"
#include "sw/parm/index_def.h"
#include "sw/parm/present_bounds.h"

class PresentIndex {
 public:
  /// `situation` has a slot for each of the index's variables.
  PresentIndex(const IndexDef& index, Situation situation)
      : index_(index),
        situation_(std::move(situation)),
        isValid_(index.isValid(situation_)),
        check_(index, situation_) {}
  PresentIndex(const PresentIndex&) = delete;
  PresentIndex& operator=(const PresentIndex&) = delete;

  [[nodiscard]] const std::string& name() const { return index_.name(); }
  [[nodiscard]] const Situation& situation() const { return situation_; }
  /// Whether every validity condition is true.
  [[nodiscard]] bool isValid() const { return isValid_; }
  /// Whether all bounds accept `value`, once translated.
  [[nodiscard]] bool takes(const std::string& value) { return index_.checkValue(value, check_); }

 private:
  const IndexDef& index_;
  Situation situation_;
  bool isValid_;
  BoundsCheck check_;
};

/// The indices of one instance as they are just now.
class PresentIndices {
 public:
  virtual ~PresentIndices() = default;
  /// The index at `place`, up to the next call. `own` is the parameter's situation, in which the
  /// values of the indices before it are bound.
  [[nodiscard]] virtual PresentIndex& at(size_t place, const Situation& own) = 0;
};
