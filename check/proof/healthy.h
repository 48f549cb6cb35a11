// Whether a goal can be met by a device in good health: everything that matters for it has been
// set, exists, and holds a value that its own definition keeps there.
#pragma once

#include "check/proof/anywhere.h"
#include "check/proof/deadline.h"
#include "check/proof/replay.h"

/// What findHealthy() finds out.
struct HealthyResult {
  Verdict verdict = VERDICT_UNDECIDED;
  /// Of VERDICT_POSSIBLE: the values of what the goal depends on, in the order in which they can be
  /// set one after the other. The engine has been in this situation.
  NamedValues witness = {};
  IndexTuple indices = {};  ///< of VERDICT_POSSIBLE: those of the instance that reads the goal
  /// Unless IMPOSSIBLE: whether only such values are known to meet the goal, or could, that are
  /// there because a range of their own definition has no values, or none of its ranges counts.
  /// That is told there.
  bool isAstray = false;
  /// Of VERDICT_IMPOSSIBLE: whether the goal may be met all the same where something that matters
  /// for it is not there, and holds what it held before, or nothing; or where parameters that refer
  /// to each other were set together, and what each was given left the other without a range. A
  /// device rests like that, too.
  bool isMetOtherwise = false;

  /// Of VERDICT_POSSIBLE: what leads there from the defaults, where setting one value after the
  /// other need not.
  Commits commits = {};

  /// The verdict on a device that rests, be everything there or not. Where values may go astray,
  /// and nothing else is known, the goal counts as possible: that is told there.
  [[nodiscard]] Verdict atRest() const {
    const bool isLeftOpen = isAstray && verdict == VERDICT_UNDECIDED;
    return isMetOtherwise || isLeftOpen ? VERDICT_POSSIBLE : verdict;
  }
};

/// How many values are set before a goal is left undecided.
constexpr size_t MAX_SET_VALUES = 3000;

/// Looks for a healthy situation that meets `goal`, by setting values on the engine, each after
/// what it follows. `isMet` may ask more of the situation than the goal does: it is called where
/// the goal holds, with the values set. An IMPOSSIBLE is proved: every value that a definition can
/// tell from the others was tried. After `deadline` the goal is left undecided. `budget` may be
/// null. All values of the database are unset before and afterwards.
HealthyResult findHealthy(const Goal& goal, const CompiledText& text, Domains& domains,
                          const std::function<bool(const IndexTuple& indices)>& isMet = {},
                          const Deadline& deadline = {}, SolverBudget* budget = nullptr);
