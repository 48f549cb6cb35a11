// Candidates: values of a name that stand for all values of its domain, in one set of expressions.
#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "check/proof/compiled_text.h"
#include "check/proof/domains.h"
#include "check/proof/goal.h"

/// How expressions use one name.
struct NameUse {
  std::set<int32_t> numbers = {};    ///< that it is compared with
  std::set<std::string> texts = {};  ///< that it is compared with
  bool isText = false;               ///< its text matters beyond equality
  bool isOrdered = false;   ///< compared with a number by < or the like: texts are by their bytes
  bool isReckoned = false;  ///< it goes into arithmetic, or is compared with what is no literal
  bool isFigure = false;    ///< a figure of the standard that it selects is used
};

/// Uses by the name referred to.
using NameUses = std::map<std::string, NameUse, std::less<>>;

/// What an expression is for: whether its result is only asked for its truth.
enum ExpressionPurpose { FOR_TRUTH, FOR_VALUE };

/// What the expressions of a wish are for.
inline ExpressionPurpose purposeOf(const Wish& wish) {
  return wish.result >= WANT_TEXT ? FOR_VALUE : FOR_TRUTH;
}

/// Notes that a name is told from its neighbours by a number.
void noteNumber(int32_t number, NameUse& use);
/// Adds another use of the name to `use`.
void addUse(const NameUse& other, NameUse& use);
/// Adds to `uses` how `expression` uses each of its names.
void noteUses(const CompiledExpression& expression, ExpressionPurpose purpose, NameUses& uses);

/// Likewise of a statement: its condition for its truth, its items for their values.
void noteUses(const CompiledStatement& statement, NameUses& uses);

/// Values of `domain` to try.
struct Candidates {
  std::vector<std::optional<std::string>> values;  ///< nullopt: undefined
  /// Whether every value of the domain acts as one of them in expressions that use it so.
  bool isComplete = true;
};

/// The candidates of a name. A domain of at most `few` values is listed whole.
Candidates candidatesFor(const NameDomain& domain, const NameUse& use, uint64_t few);
