// Index situations: what the indices of instances are while a commit or a range query evaluates one
// instance after the other.
#pragma once

#include <cstddef>
#include <optional>
#include <unordered_map>

#include "database/database.h"
#include "database/staged_values.h"
#include "deflang/expression/variables.h"
#include "sw/parm/index_tuple.h"
#include "sw/parm/present_index.h"

/// An index that is shared by all instances is worked out once, until one of the parameters that it
/// names takes another value. So whoever changes a staged value meanwhile has to say so.
class IndexSituations {
 public:
  explicit IndexSituations(const StagedValues& staged) : staged_(staged) {}
  IndexSituations(const IndexSituations&) = delete;
  IndexSituations& operator=(const IndexSituations&) = delete;

  [[nodiscard]] const StagedValues& staged() const { return staged_; }
  /// The index at `place` of the instance `indices` of `parm`, up to the next call. `own` is the
  /// instance's situation, in which the values of the indices before it are bound. Counts the work.
  [[nodiscard]] PresentIndex& at(const ParmEntry& parm, const IndexTuple& indices, size_t place,
                                 const Situation& own);
  /// Forgets what depends on the values of `parm`, one of which is about to change or to move.
  void forget(const ParmEntry& parm);

 private:
  const StagedValues& staged_;
  std::unordered_map<const IndexEntry*, std::optional<PresentIndex>> shared_;
  std::optional<PresentIndex> ofInstance_;
};
