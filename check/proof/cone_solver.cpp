#include "check/proof/cone_solver.h"

#include <algorithm>

#include "check/proof/solver.h"
#include "sw/parm/parm_name.h"

namespace {

class ConeSolver {
 public:
  ConeSolver(Attempt& attempt, const DomainsByName& least, bool withAbsent)
      : attempt_(attempt), least_(least), withAbsent_(withAbsent) {}

  AnywhereResult solve() {
    requireAll(attempt_.question().goal.clauses, attempt_.reader());
    for (const ConeInstance& instance : attempt_.cone().instances()) {
      if (!withAbsent_ || !mayBeAbsent(*instance.parm)) requireHealth(instance);
    }
    return question_.solve(attempt_.question().budget);
  }

 private:
  // That the instance is there, and holds what its ranges take.
  void requireHealth(const ConeInstance& instance) {
    const Subject& subject = *attempt_.question().text.find(instance.parm->parm.name());
    for (const CompiledStatement& control : subject.ctrlValid) {
      if (!control.condition) continue;
      requireAll({{{&*control.condition, WANT_TRUE}}}, {instance.parm, instance.indices, 0});
    }
    if (instance.parm->parm.conditionalBounds().empty()) return;
    const KeyOf keyOf = keyOfReader({instance.parm, instance.indices, instance.indices.size()});
    for (const CompiledStatement& range : subject.rangeValid) {
      forEachExpression(range, [&](const CompiledExpression& e) { declareNames(e, keyOf); });
    }
    const std::string key = declareInstance(*instance.parm, instance.indices);
    question_.requireWithin(key, subject.rangeValid, keyOf);
  }

  void requireAll(const std::vector<Clause>& clauses, const Reader& reader) {
    const KeyOf keyOf = keyOfReader(reader);
    for (const Clause& clause : clauses) {
      for (const Wish& wish : clause) {
        forEachExpression(wish, [&](const CompiledExpression& e) { declareNames(e, keyOf); });
      }
      question_.require(clause, keyOf);
    }
  }

  static void declareNames(const CompiledExpression& expression, const KeyOf& keyOf) {
    for (const VariableSource& source : expression.sources) static_cast<void>(keyOf(source));
  }

  // The key of each name, which is declared when it is first asked for.
  KeyOf keyOfReader(const Reader& reader) {
    return [this, reader](const VariableSource& source) {
      if (source.parm != nullptr) return declareInstance(*source.parm, reader.indicesOf(source));
      const std::string* const index = reader.ownIndex(source);
      std::string key = "=" + std::string(source.name);
      if (index != nullptr) key += "=" + *index;
      if (index == nullptr && source.constant == nullptr) key += "?";
      question_.declare(key, reader.domainOf(source, attempt_.question().domains));
      return key;
    };
  }

  std::string declareInstance(const ParmEntry& parm, const IndexTuple& indices) {
    std::string key = fullName(parm.parm.name(), indices);
    if (question_.isDeclared(key)) return key;
    const bool exists = indices.size() == parm.parm.indices().size();
    if (!exists) {
      question_.declare(key, NameDomain{Domain::of(""), false});
    } else if (withAbsent_ && mayBeAbsent(parm)) {
      question_.declare(key, domainOf(parm));
    } else {
      question_.declare(key, NameDomain{domainOf(parm).values.withoutEmpty(), false});
    }
    return key;
  }

  const NameDomain& domainOf(const ParmEntry& parm) {
    const auto found = least_.find(parm.parm.name());
    if (found != least_.end()) return found->second;
    const HealthyQuestion& question = attempt_.question();
    return question.domains.of(question.text.database().findSource(parm.parm.name()));
  }

  Attempt& attempt_;
  const DomainsByName& least_;
  const bool withAbsent_;
  SolverQuestion question_;
};

}  // namespace

bool mayBeAbsent(const ParmEntry& parm) {
  const auto isConditional = [](const IndexDef& definition) {
    return !definition.validityConditions().empty() || !definition.conditionalBounds().empty();
  };
  const std::vector<const IndexDef*>& indices = parm.parm.indices();
  return !parm.parm.validityConditions().empty() || parm.parm.mode() == MODE_NEVER ||
         std::any_of(indices.begin(), indices.end(),
                     [&](const IndexDef* index) { return isConditional(*index); });
}

AnywhereResult solveCone(Attempt& attempt, const DomainsByName& least, bool withAbsent) {
  return ConeSolver(attempt, least, withAbsent).solve();
}
