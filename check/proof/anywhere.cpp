#include "check/proof/anywhere.h"

#include <algorithm>
#include <limits>

#include "check/proof/candidates.h"
#include "check/proof/solver.h"
#include "database/gather.h"

namespace {

constexpr uint64_t FEW_VALUES = 64;
// A text that no author writes.
constexpr const char* OTHER_TEXT = "~";

// A name of the goal: what it may be, and what it is in the assignment under test.
struct GoalName {
  std::string_view name;
  NameDomain domain;
  Candidates candidates;
  const std::optional<std::string>* value = nullptr;
};

class Search {
 public:
  Search(const Goal& goal, Domains& domains, ConstantScope scope)
      : goal_(goal), domains_(domains), scope_(scope) {}

  AnywhereResult run(Effort effort, SolverBudget* budget) {
    if (isImpossible()) return {VERDICT_IMPOSSIBLE, {}};
    collectNames();
    AnywhereResult result;
    if (tryFrom(0)) {
      result.verdict = VERDICT_POSSIBLE;
      for (const GoalName& name : names_) {
        result.assignment.emplace(std::string(name.name), *name.value);
      }
    } else if (left_ > 0 && isComplete_) {
      result.verdict = VERDICT_IMPOSSIBLE;
    } else if (effort == EFFORT_THOROUGH) {
      result = solve(budget);
    }
    return result;
  }

  // Leaves it to the solver. What that says is possible has to be so for the engine.
  AnywhereResult solve(SolverBudget* budget) {
    const KeyOf keyOf = [](const VariableSource& source) { return std::string(source.name); };
    SolverQuestion question;
    for (const GoalName& name : names_) question.declare(std::string(name.name), name.domain);
    for (const Clause& clause : goal_.clauses) question.require(clause, keyOf);
    AnywhereResult result = question.solve(budget);
    if (result.verdict != VERDICT_POSSIBLE) return result;
    for (GoalName& name : names_) name.value = &result.assignment.find(name.name)->second;
    const bool holdsAll = std::all_of(goal_.clauses.begin(), goal_.clauses.end(),
                                      [&](const Clause& clause) { return holds(clause); });
    return holdsAll ? result : AnywhereResult();
  }

 private:
  NameDomain domainOf(const VariableSource& source) {
    NameDomain domain = scope_ == ANY_VARIANT ? domains_.ofAnyVariant(source) : domains_.of(source);
    const bool isIndex = source.parm == nullptr && source.constant == nullptr;
    if (!isIndex || goal_.subject->parm == nullptr) return domain;
    // A parameter's expressions see its own indices, always or never.
    domain.mayBeUndefined = !goal_.seesIndices || !hasIndex(*goal_.subject->parm, source.name);
    if (domain.mayBeUndefined) domain.values = Domain();
    return domain;
  }

  // All numbers, the texts that a name is compared with, and one that is none of them.
  static NameDomain anyText(const NameUse& use) {
    NameDomain domain;
    domain.values.addSpan(std::numeric_limits<int32_t>::min(), std::numeric_limits<int32_t>::max());
    for (const std::string& text : use.texts) domain.values.addText(text);
    domain.values.addText(OTHER_TEXT);
    return domain;
  }

  static bool hasIndex(const ParmEntry& entry, std::string_view name) {
    const std::vector<const IndexDef*>& own = entry.parm.indices();
    return std::any_of(own.begin(), own.end(),
                       [&](const IndexDef* index) { return index->name() == name; });
  }

  // Whether intervals and sets of texts rule out one clause already.
  bool isImpossible() {
    return scope_ == THIS_VARIANT && !mayHold(goal_, [&](const VariableSource& source) {
             return Domains::abstractOf(source, domainOf(source));
           });
  }

  void collectNames() {
    NameUses uses;
    std::map<std::string_view, const VariableSource*> sources;
    for (const Clause& clause : goal_.clauses) {
      for (const Wish& wish : clause) {
        forEachExpression(wish, [&](const CompiledExpression& expression) {
          noteUses(expression, purposeOf(wish), uses);
          for (const VariableSource& source : expression.sources) {
            sources.emplace(source.name, &source);
          }
        });
      }
    }
    for (const auto& [name, source] : sources) {
      GoalName& added = names_.emplace_back();
      added.name = name;
      const NameUse& use = uses.find(name)->second;
      added.domain = scope_ == ANY_TEXT ? anyText(use) : domainOf(*source);
      added.candidates = candidatesFor(added.domain, use, FEW_VALUES);
      isComplete_ = isComplete_ && added.candidates.isComplete;
    }
    // Names with few candidates first: a clause is ruled out as early as can be.
    std::stable_sort(names_.begin(), names_.end(), [](const GoalName& a, const GoalName& b) {
      return a.candidates.values.size() < b.candidates.values.size();
    });
    for (size_t i = 0; i < names_.size(); ++i) places_.emplace(names_[i].name, i);
    for (const Clause& clause : goal_.clauses) lastNames_.push_back(lastNameOf(clause));
  }

  // How many names have to have values before `clause` can be asked.
  size_t lastNameOf(const Clause& clause) const {
    size_t last = 0;
    for (const Wish& wish : clause) {
      forEachExpression(wish, [&](const CompiledExpression& expression) {
        for (const VariableSource& source : expression.sources) {
          last = std::max(last, places_.at(source.name) + 1);
        }
      });
    }
    return last;
  }

  bool tryFrom(size_t place) {
    if (left_ == 0 || !holdsWith(place)) return false;
    if (place == names_.size()) return true;
    for (const std::optional<std::string>& value : names_[place].candidates.values) {
      names_[place].value = &value;
      if (tryFrom(place + 1)) return true;
      if (left_ == 0) return false;
    }
    return false;
  }

  // Whether the clauses hold that the first `count` names decide and fewer do not.
  bool holdsWith(size_t count) {
    for (size_t i = 0; i < lastNames_.size(); ++i) {
      if (lastNames_[i] != count) continue;
      --left_;
      if (!holds(goal_.clauses[i])) return false;
      if (left_ == 0) return false;
    }
    return true;
  }

  bool holds(const Clause& clause) const {
    return std::any_of(clause.begin(), clause.end(), [&](const Wish& wish) {
      return comesTrue(wish, [&](const CompiledExpression& e) { return evaluate(e); });
    });
  }

  Value evaluate(const CompiledExpression& expression) const {
    Situation situation(expression.variables.size());
    for (uint32_t slot = 0; slot < expression.sources.size(); ++slot) {
      const VariableSource& source = expression.sources[slot];
      const std::optional<std::string>& value = *names_[places_.at(source.name)].value;
      if (value) situation.bind(slot, operandIn(source, operandOf(*value)));
    }
    return expression.program.evaluate(situation);
  }

  const Goal& goal_;
  Domains& domains_;
  ConstantScope scope_;
  std::vector<GoalName> names_;
  std::map<std::string_view, size_t> places_;
  std::vector<size_t> lastNames_;  // by clause
  bool isComplete_ = true;
  size_t left_ = MAX_TRIED_ASSIGNMENTS;
};

}  // namespace

AnywhereResult decideAnywhere(const Goal& goal, Domains& domains, ConstantScope scope,
                              Effort effort, SolverBudget* budget) {
  return Search(goal, domains, scope).run(effort, budget);
}
