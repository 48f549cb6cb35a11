// Solver: whether a set of wishes can come true at all, decided by a solver of bit-vector formulas.
//
// The formulas say what the engine's expressions do, for numbers exactly. Of texts they know those
// that occur, and one more that is none of them; what the order or the parts of that one are stays
// open. So an IMPOSSIBLE holds for the engine, and a POSSIBLE has to be tried on it.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "check/proof/anywhere.h"

/// What the questions about one definition may spend on what they do not decide, in steps that the
/// solver counts: then the result is the same on every machine, and however many processes share
/// the definitions. A text full of hard questions ends.
class SolverBudget {
 public:
  /// For one of `definitions` definitions of a text.
  explicit SolverBudget(size_t definitions);

  /// How many steps the next question may take: all while there are some left, then few, then none.
  [[nodiscard]] unsigned limit() const;
  /// Takes what a question has spent in vain.
  void take(unsigned steps) { left_ -= steps; }

 private:
  int64_t all_;
  int64_t left_;
};

/// Gives each name of an expression the key of its variable.
using KeyOf = std::function<std::string(const VariableSource&)>;

/// What is to be solved.
class SolverQuestion {
 public:
  /// A variable may have a value of `domain`. Every key has to be declared before it is used.
  void declare(const std::string& key, const NameDomain& domain) {
    if (domains_.emplace(key, domain).second) order_.push_back(key);
  }
  [[nodiscard]] bool isDeclared(const std::string& key) const { return domains_.contains(key); }
  /// One of the wishes of `clause` has to come true. The expressions have to outlive this.
  void require(const Clause& clause, const KeyOf& keyOf) { clauses_.push_back({clause, keyOf}); }
  /// The variable has to be in one of the ranges whose condition is true, if there is one and its
  /// items have their values.
  void requireWithin(const std::string& key, const std::vector<CompiledStatement>& ranges,
                     const KeyOf& keyOf) {
    ranges_.push_back({key, &ranges, keyOf});
  }

  /// Decides the question within its own limit and `budget`, which may be null. With
  /// VERDICT_POSSIBLE an assignment by key that the formulas admit. The same question, whatever its
  /// names are, is solved once.
  [[nodiscard]] AnywhereResult solve(SolverBudget* budget = nullptr) const;
  /// Forgets what was solved, so that a process that checks many texts does not grow.
  static void forgetAnswers();

 private:
  friend class Formulas;
  struct RequiredClause {
    Clause clause;
    KeyOf keyOf;
  };
  struct RequiredRange {
    std::string key;
    const std::vector<CompiledStatement>* ranges;
    KeyOf keyOf;
  };

  // The question without its names.
  [[nodiscard]] std::string canonicalText() const;

  std::map<std::string, NameDomain> domains_;
  std::vector<std::string> order_;  // the keys, as they were declared
  std::vector<RequiredClause> clauses_;
  std::vector<RequiredRange> ranges_;
};
