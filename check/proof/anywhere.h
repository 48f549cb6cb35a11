// Whether a goal can be met at all: each name may have any value of its domain, old ones included,
// whatever the others have.
#pragma once

#include <map>
#include <optional>
#include <string>

#include "check/proof/domains.h"
#include "check/proof/goal.h"

/// What is known about a goal.
enum Verdict {
  VERDICT_POSSIBLE,    ///< an assignment meets it
  VERDICT_IMPOSSIBLE,  ///< none does
  VERDICT_UNDECIDED,   ///< not found out within the limit
};

/// Which values names have.
enum ConstantScope {
  THIS_VARIANT,  ///< those of their domains, and the constants of the variant
  ANY_VARIANT,   ///< constants all that are given, and all that the text compares them with
  ANY_TEXT,      ///< any that there is, whatever the definitions say: what form alone decides
};

/// Values by base or full name; nullopt for a name that is undefined.
using Assignment = std::map<std::string, std::optional<std::string>, std::less<>>;

/// What decideAnywhere() finds out.
struct AnywhereResult {
  Verdict verdict = VERDICT_UNDECIDED;
  Assignment assignment = {};  ///< of VERDICT_POSSIBLE
};

/// How many assignments are tried before a goal is left undecided.
constexpr size_t MAX_TRIED_ASSIGNMENTS = 5000;

class SolverBudget;

/// How hard a question is tried.
enum Effort {
  EFFORT_QUICK,     ///< by intervals and assignments
  EFFORT_THOROUGH,  ///< and by a solver
};

/// Decides `goal`. An IMPOSSIBLE is proved: by intervals and sets of texts, or because every
/// assignment that an expression of the goal can tell from the others was tried. `budget` may be
/// null.
AnywhereResult decideAnywhere(const Goal& goal, Domains& domains, ConstantScope scope,
                              Effort effort = EFFORT_THOROUGH, SolverBudget* budget = nullptr);
