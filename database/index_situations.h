// Index situations: what the indices of instances are while a commit or a range query evaluates one
// instance after the other. Working an index out costs its whole situation, and a parameter may
// have a million instances with the same index.
#pragma once

#include <cstddef>
#include <optional>
#include <unordered_map>

#include "database/database.h"
#include "database/staged_values.h"
#include "deflang/expression/variables.h"
#include "sw/parm/index_tuple.h"
#include "sw/parm/present_index.h"

/// Lives for one commit or range query, beside the staged values that it reads.
///
/// An index that is the same for all instances (IndexEntry::isShared) is worked out when it is
/// first asked for, and kept until one of the parameters that it names takes another value. So
/// whoever changes a staged value of such a parameter calls forget() before, because what is kept
/// has views of that value. Every other index is worked out at each call.
class IndexSituations {
 public:
  /// Reads from `staged`, which has to live as long.
  explicit IndexSituations(const StagedValues& staged) : staged_(staged) {}
  IndexSituations(const IndexSituations&) = delete;
  IndexSituations& operator=(const IndexSituations&) = delete;

  [[nodiscard]] const StagedValues& staged() const { return staged_; }
  /// The index at `place` (in index order, from 0) of the instance `indices` of `parm`. The
  /// reference holds until the next call of at() or forget(). `own` is the situation of the
  /// instance, in which the values of the indices before this one are bound. Counts the work, and
  /// raises WorkExceeded where it passes the budget.
  [[nodiscard]] PresentIndex& at(const ParmEntry& parm, const IndexTuple& indices, size_t place,
                                 const Situation& own);
  /// Drops each kept index that names `parm`, one of whose values is about to change or to move.
  void forget(const ParmEntry& parm);

 private:
  const StagedValues& staged_;
  std::unordered_map<const IndexEntry*, std::optional<PresentIndex>> shared_;
  std::optional<PresentIndex> ofInstance_;  // that at() gave last, where it is not shared
};
