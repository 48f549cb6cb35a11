// Present indices: what an index is in one situation.
#pragma once

#include <cstddef>
#include <string>
#include <utility>

#include "deflang/expression/variables.h"
#include "sw/parm/index_def.h"
#include "sw/parm/present_bounds.h"

/// An index together with a situation, for the judgement of many values: whether the index is
/// available is worked out when the object is made, which conditional bounds apply when the first
/// value needs them.
///
/// The index has to outlive the object, and so do the texts that the situation views. Both must not
/// change meanwhile: database/index_situations.h says who sees to that. The object stays where it
/// is, because its check refers to its own situation.
///
/// All that evaluates expressions may raise std::bad_alloc or WorkExceeded. Only the work on texts
/// is counted here; the caller counts IndexDef::situationWork() and IndexDef::askingWork().
class PresentIndex {
 public:
  /// `situation` has a slot for each of the index's variables, and is kept.
  PresentIndex(const IndexDef& index, Situation situation)
      : index_(index),
        situation_(std::move(situation)),
        isAvailable_(index.isAvailable(situation_)),
        check_(index, situation_) {}
  PresentIndex(const PresentIndex&) = delete;
  PresentIndex& operator=(const PresentIndex&) = delete;

  /// The name of the index.
  [[nodiscard]] const std::string& name() const { return index_.name(); }
  /// The situation by the slots of the index, not of the parameter.
  [[nodiscard]] const Situation& situation() const { return situation_; }
  /// Whether every validity condition of the index is true. It does not keep takes() from
  /// answering: the caller asks for both.
  [[nodiscard]] bool isAvailable() const { return isAvailable_; }
  /// Whether all bounds of the index accept `value`, once translated. Nothing is corrected: an
  /// index value is taken as it is or refused.
  [[nodiscard]] bool takes(const std::string& value) { return index_.checkValue(value, check_); }

 private:
  const IndexDef& index_;
  Situation situation_;
  bool isAvailable_;
  BoundsCheck check_;
};

/// The indices of one instance as they are just now. The database implements it: an index may name
/// any parameter, and the values of parameters are on that floor.
class PresentIndices {
 public:
  virtual ~PresentIndices() = default;
  /// The index at `place`, which counts from 0 and is less than the number of indices. `own` is the
  /// parameter's situation, in which the values of the indices before `place` are bound. The
  /// reference is valid until the next call. May raise std::bad_alloc or WorkExceeded.
  [[nodiscard]] virtual PresentIndex& at(size_t place, const Situation& own) = 0;
};
