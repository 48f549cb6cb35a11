#include "check/proof/healthy.h"

#include <algorithm>
#include <set>

#include "base/number.h"
#include "base/work.h"
#include "check/proof/candidates.h"
#include "check/proof/solver.h"
#include "database/commit.h"
#include "database/evaluation.h"
#include "database/gather.h"
#include "database/index_situations.h"
#include "database/index_values.h"
#include "database/plan.h"
#include "database/transaction.h"
#include "sw/parm/parm_name.h"
#include "sw/parm/present_bounds.h"

namespace {

constexpr uint64_t FEW_VALUES = 12;
constexpr size_t MANY_INDEX_TUPLES = 16;
// What depends on more than these is left undecided: to set them all takes the square of their
// number, for each question.
constexpr size_t MANY_INSTANCES = 60;

// An instance whose value matters, and the values to try.
struct ConeInstance {
  ParmEntry* parm;
  IndexTuple indices;
  NameUse use = {};
  /// What it may be just now; nullopt where what it follows is not set yet.
  std::optional<NameDomain> present = {};
};

constexpr size_t MAX_MOVES = 3;

// What is set while a situation is looked for: straight into the database, without a commit,
// because everything is set after what it follows.
class Setter {
 public:
  // Sets `value` as a commit would. Returns what became of it, and leaves in `value` what the
  // instance holds.
  SetCode set(const ConeInstance& instance, std::string& value, bool dryRun = false) {
    StagedEntry entry;
    entry.parm = instance.parm;
    entry.indices = instance.indices;
    entry.value.set(value);
    entry.generated = true;
    IndexSituations situations(staged_);
    const SetCode code = evaluate(entry, situations, dryRun);
    value = entry.value.text();
    return code;
  }
  static void unset(const ConeInstance& instance) {
    CommittedValue* const held = instance.parm->parm.committed(instance.indices);
    if (held != nullptr) *held = CommittedValue();
  }
  [[nodiscard]] const StagedValues& staged() const { return staged_; }

 private:
  StagedValues staged_;
};

// The instances that a goal depends on, directly or through others.
class Cone {
 public:
  Cone(const Goal& goal, const IndexTuple& indices) {
    const ParmEntry* const parm = goal.subject->parm;
    for (const Clause& clause : goal.clauses) {
      for (const Wish& wish : clause) {
        forEachExpression(wish, [&](const CompiledExpression& expression) {
          for (const VariableSource& source : expression.sources) add(source, parm, indices);
        });
      }
    }
    if (parm != nullptr) addIndices(*parm, indices);
    if (goal.dependsOnRanges) addOwn(*goal.subject, indices);
    // What is reached is added behind those that are still to be looked at.
    size_t next = 0;
    while (next < instances_.size()) {
      ParmEntry* const entry = instances_[next].parm;
      const IndexTuple own = instances_[next].indices;
      for (const VariableSource& source : entry->sources) add(source, entry, own);
      addIndices(*entry, own);
      ++next;
    }
    std::stable_sort(instances_.begin(), instances_.end(), [](const auto& a, const auto& b) {
      return std::tie(a.parm->level, a.parm->rank) < std::tie(b.parm->level, b.parm->rank);
    });
  }
  [[nodiscard]] std::vector<ConeInstance>& instances() { return instances_; }
  [[nodiscard]] const std::vector<ConeInstance>& instances() const { return instances_; }
  // Whether two parameters in it refer to each other.
  [[nodiscard]] bool hasRing() const {
    return std::any_of(instances_.begin(), instances_.end(), [](const ConeInstance& instance) {
      const ParmEntry& entry = *instance.parm;
      return std::any_of(entry.sources.begin(), entry.sources.end(),
                         [&](const VariableSource& source) {
                           return source.parm != nullptr && source.parm->level >= entry.level;
                         });
    });
  }

 private:
  void addOwn(const Subject& subject, const IndexTuple& indices) {
    const VariableSources& sources =
        subject.parm != nullptr ? subject.parm->sources : subject.index->sources;
    for (const VariableSource& source : sources) add(source, subject.parm, indices);
  }
  void addIndices(const ParmEntry& parm, const IndexTuple& indices) {
    for (const IndexEntry* index : parm.indices->own) {
      for (const VariableSource& source : index->sources) add(source, &parm, indices);
    }
  }
  void add(const VariableSource& source, const ParmEntry* reader, const IndexTuple& indices) {
    if (source.parm == nullptr) return;
    const IndexTuple own =
        reader == nullptr ? source.indices : indicesOf(source, reader->parm, indices);
    // What is read with too few index values is never there.
    if (own.size() != source.parm->parm.indices().size()) return;
    Work::add(WORK_PER_REFERENCE);
    if (seen_.emplace(source.parm, own).second) instances_.push_back({source.parm, own});
  }

  std::vector<ConeInstance> instances_;
  std::set<std::pair<const ParmEntry*, IndexTuple>> seen_;
};

// How the definitions of a cone and a goal use each parameter.
class ConeUses {
 public:
  ConeUses(const Goal& goal, const CompiledText& text) : text_(text) {
    for (const Clause& clause : goal.clauses) {
      for (const Wish& wish : clause) {
        forEachExpression(wish, [&](const CompiledExpression& expression) {
          noteUses(expression, purposeOf(wish), uses_);
        });
      }
    }
  }
  void add(std::string_view name) {
    const Subject* const subject = text_.find(name);
    if (subject == nullptr) return;
    for (const auto* statements : {&subject->rangeValid, &subject->ctrlValid}) {
      for (const CompiledStatement& statement : *statements) {
        if (statement.condition) noteUses(*statement.condition, FOR_TRUTH, uses_);
        for (const CompiledItem& item : statement.items) {
          forEachExpression(item, [&](const CompiledExpression& expression) {
            noteUses(expression, FOR_VALUE, uses_);
          });
        }
      }
    }
  }
  // How the instances of a parameter are used, whatever index values the text gives them.
  [[nodiscard]] NameUse of(std::string_view base) const {
    Work::add(WORK_PER_COMPARISON * uses_.size());
    NameUse all;
    for (const auto& [name, use] : uses_) {
      if (baseName(name) != base) continue;
      all.numbers.insert(use.numbers.begin(), use.numbers.end());
      all.texts.insert(use.texts.begin(), use.texts.end());
      all.isText = all.isText || use.isText;
      all.isOrdered = all.isOrdered || use.isOrdered;
      all.isReckoned = all.isReckoned || use.isReckoned;
      all.isFigure = all.isFigure || use.isFigure;
    }
    return all;
  }

 private:
  const CompiledText& text_;
  NameUses uses_;
};

class HealthySearch {
 public:
  HealthySearch(const Goal& goal, const CompiledText& text, Domains& domains,
                const std::function<bool(const IndexTuple&)>& isMet, const Deadline& deadline)
      : goal_(goal), text_(text), domains_(domains), isMet_(isMet), deadline_(deadline) {}

  HealthyResult run() {
    const std::vector<IndexTuple> tuples = indexTuples();
    for (const IndexTuple& indices : tuples) {
      if (found_ || left_ == 0) break;
      searchFor(indices);
    }
    // The solver does not know what else is asked of the situation.
    if (!found_ && !isMet_ && (left_ == 0 || !isComplete_)) solveFor(tuples);
    if (found_) return {VERDICT_POSSIBLE, *std::move(found_), foundIndices_};
    const bool isImpossible = isUnsolvable_ || (left_ > 0 && isComplete_);
    return {isImpossible ? VERDICT_IMPOSSIBLE : VERDICT_UNDECIDED, {}, {}};
  }

 private:
  // The first and the last value of an index that has any.
  static std::vector<std::string> endsOf(const BoundsParm& bounds) {
    const Spans& spans = bounds.integers().spans();
    const std::set<std::string>& texts = bounds.strings().texts();
    return {spans.empty() ? *texts.begin() : numberText(spans.front().first),
            texts.empty() ? numberText(spans.back().second) : *texts.rbegin()};
  }

  // The instances to ask about: the first and the last values of each index, and all where there
  // are few.
  std::vector<IndexTuple> indexTuples() {
    if (goal_.subject->parm == nullptr) return {{}};
    std::vector<IndexTuple> tuples = {{}};
    for (IndexEntry* const index : goal_.subject->parm->indices->own) {
      const bool areFew = countIndexValues(*index->index) * tuples.size() <= MANY_INDEX_TUPLES;
      isComplete_ = isComplete_ && areFew;
      areAllTuples_ = areAllTuples_ && areFew;
      std::vector<std::string> values =
          areFew ? indexValues(*index) : endsOf(index->index->baseBounds());
      // Each further index would double them.
      if (!areFew && tuples.size() >= MANY_INDEX_TUPLES) values.pop_back();
      std::vector<IndexTuple> longer;
      for (const IndexTuple& tuple : tuples) {
        for (const std::string& value : values) {
          longer.push_back(tuple);
          longer.back().push_back(value);
        }
      }
      tuples = std::move(longer);
    }
    return tuples;
  }

  void searchFor(const IndexTuple& indices) {
    indices_ = &indices;
    cone_.emplace(goal_, indices);
    if (cone().size() > MANY_INSTANCES) {
      isComplete_ = false;
      return;
    }
    ConeUses uses(goal_, text_);
    for (const ConeInstance& instance : cone()) uses.add(instance.parm->parm.name());
    if (goal_.dependsOnRanges) uses.add(goal_.subject->name());
    for (ConeInstance& instance : cone()) {
      instance.use = uses.of(instance.parm->parm.name());
    }
    places_.clear();
    for (size_t i = 0; i < cone().size(); ++i) {
      places_.emplace(std::pair(cone()[i].parm, cone()[i].indices), i);
    }
    if (cone_->hasRing()) {
      walkFromDefaults();
    } else {
      setFrom(0);
    }
  }

  // Leaves it to the solver, for each instance. What that says is possible is tried on the engine.
  void solveFor(const std::vector<IndexTuple>& tuples) {
    bool isUnsolvable = areAllTuples_;
    for (const IndexTuple& indices : tuples) {
      if (deadline_.isOver()) return;
      indices_ = &indices;
      cone_.emplace(goal_, indices);
      if (cone().size() > MANY_INSTANCES) return;
      const AnywhereResult result = solveCone();
      isUnsolvable = isUnsolvable && result.verdict == VERDICT_IMPOSSIBLE;
      if (result.verdict == VERDICT_POSSIBLE && !cone_->hasRing()) trySolution(result.assignment);
      if (found_ || !isUnsolvable) return;
    }
    isUnsolvable_ = isUnsolvable;
  }

  AnywhereResult solveCone() {
    SolverQuestion question;
    requireAll(question, goal_.clauses, {goal_.subject->parm, *indices_, goal_.seesIndices});
    for (const ConeInstance& instance : cone()) {
      const Subject& subject = *text_.find(instance.parm->parm.name());
      for (const CompiledStatement& control : subject.ctrlValid) {
        if (control.condition) {
          requireAll(question, {{{&*control.condition, WANT_TRUE}}},
                     {instance.parm, instance.indices, false});
        }
      }
      if (instance.parm->parm.conditionalBounds().empty()) continue;
      const KeyOf keyOf = keyOfReader(question, {instance.parm, instance.indices, true});
      for (const CompiledStatement& range : subject.rangeValid) {
        forEachExpression(
            range, [&](const CompiledExpression& expression) { declareNames(expression, keyOf); });
      }
      const std::string key = declareInstance(question, *instance.parm, instance.indices);
      question.requireWithin(key, subject.rangeValid, keyOf);
    }
    return question.solve();
  }

  // Whose expressions are read, and whether they see the values of its indices.
  struct Reader {
    const ParmEntry* parm;
    IndexTuple indices;
    bool seesIndices;
  };

  static void declareNames(const CompiledExpression& expression, const KeyOf& keyOf) {
    for (const VariableSource& source : expression.sources) static_cast<void>(keyOf(source));
  }

  void requireAll(SolverQuestion& question, const std::vector<Clause>& clauses,
                  const Reader& reader) {
    const KeyOf keyOf = keyOfReader(question, reader);
    for (const Clause& clause : clauses) {
      for (const Wish& wish : clause) {
        forEachExpression(
            wish, [&](const CompiledExpression& expression) { declareNames(expression, keyOf); });
      }
      question.require(clause, keyOf);
    }
  }

  // The key of each name, which is declared when it is first asked for.
  KeyOf keyOfReader(SolverQuestion& question, const Reader& reader) {
    return [this, &question, reader](const VariableSource& source) {
      if (source.parm != nullptr) {
        const IndexTuple own = reader.parm == nullptr
                                   ? source.indices
                                   : indicesOf(source, reader.parm->parm, reader.indices);
        return declareInstance(question, *source.parm, own);
      }
      std::string key = "=" + std::string(source.name);
      NameDomain domain;
      if (source.constant != nullptr) {
        domain = domains_.of(source);
      } else {
        domain.mayBeUndefined = true;
        for (size_t i = 0; reader.seesIndices && i < reader.indices.size(); ++i) {
          if (reader.parm->parm.indices()[i]->name() != source.name) continue;
          domain = {Domain::of(reader.indices[i]), false};
          key += "=" + reader.indices[i];
        }
        if (domain.mayBeUndefined) key += "?";
      }
      question.declare(key, domain);
      return key;
    };
  }

  std::string declareInstance(SolverQuestion& question, const ParmEntry& parm,
                              const IndexTuple& indices) {
    std::string key = fullName(parm.parm.name(), indices);
    if (question.isDeclared(key)) return key;
    const bool exists = indices.size() == parm.parm.indices().size();
    const NameDomain& domain = domains_.of(text_.database().findSource(parm.parm.name()));
    question.declare(key, exists ? NameDomain{domain.values.withoutEmpty(), false}
                                 : NameDomain{Domain::of(""), false});
    return key;
  }

  void trySolution(const Assignment& solution) {
    for (const ConeInstance& instance : cone()) {
      const auto found = solution.find(fullName(instance.parm->parm.name(), instance.indices));
      std::string value = found == solution.end() ? std::string() : found->second.value_or("");
      if (!isAccepted(setter_.set(instance, value))) break;
    }
    if (allAreSet()) finish();
    for (const ConeInstance& instance : cone()) Setter::unset(instance);
  }

  // Values that carry each other, as two that follow each other do, count only where the defaults
  // and one change after the other lead there.
  void walkFromDefaults() {
    Database& database = text_.database();
    if (!mayHoldFromDefaults()) return;
    isComplete_ = false;
    std::set<std::vector<std::string>> seen;
    std::vector<NamedValues> open = {{}};
    for (size_t next = 0; next < open.size() && !found_ && mayGoOn(); ++next) {
      const NamedValues moves = open[next];
      if (!moveFromDefaults(moves, coneNames(), database)) continue;
      if (!seen.insert(coneValues()).second) continue;
      if (subjectExists() && goalHolds() && allAreSet() && (!isMet_ || isMet_(*indices_))) {
        take();
        break;
      }
      if (moves.size() == MAX_MOVES) continue;
      for (const ConeInstance& instance : cone()) {
        const std::string name = fullName(instance.parm->parm.name(), instance.indices);
        const Candidates candidates = candidatesFor(
            domains_.of(database.findSource(instance.parm->parm.name())), instance.use, FEW_VALUES);
        for (const std::optional<std::string>& value : candidates.values) {
          if (!value || value->empty()) continue;
          open.push_back(moves);
          open.back().emplace_back(name, *value);
        }
      }
      left_ -= std::min(left_, cone().size());
    }
    forgetAround(coneNames(), database);
  }

  // Whether intervals leave the goal possible, with all that can follow from the defaults.
  bool mayHoldFromDefaults() {
    if (isMet_) return true;
    static_cast<void>(moveFromDefaults({}, coneNames(), text_.database()));
    std::map<std::string, Domain, std::less<>> start;
    bool isAnyUnset = false;
    for (const ConeInstance& instance : cone()) {
      const std::string& held = instance.parm->parm.committedText(instance.indices);
      if (held.empty()) isAnyUnset = true;
      start[instance.parm->parm.name()].addText(held);
    }
    forgetAround(coneNames(), text_.database());
    // What its own default leaves unset has no value to begin from.
    if (isAnyUnset) return true;
    const auto least = domains_.leastOf(start);
    return mayHold(goal_, [&](const VariableSource& source) {
      if (source.parm == nullptr) return Domains::abstractOf(source, indexDomain(source));
      const auto found = least.find(baseName(source.name));
      return found == least.end() ? domains_.abstractOf(source)
                                  : Domains::abstractOf(source, found->second);
    });
  }

  [[nodiscard]] std::vector<std::string> coneNames() const {
    std::vector<std::string> names;
    for (const ConeInstance& instance : cone()) {
      names.push_back(fullName(instance.parm->parm.name(), instance.indices));
    }
    return names;
  }

  [[nodiscard]] std::vector<std::string> coneValues() const {
    std::vector<std::string> values;
    for (const ConeInstance& instance : cone()) {
      values.push_back(instance.parm->parm.committedText(instance.indices));
    }
    return values;
  }

  bool allAreSet() {
    const std::vector<std::string> values = coneValues();
    return std::none_of(values.begin(), values.end(),
                        [](const std::string& value) { return value.empty(); }) &&
           allStay();
  }

  void setFrom(size_t place) {
    if (place == cone().size()) {
      finish();
      return;
    }
    ConeInstance& instance = cone()[place];
    instance.present = presentDomain(instance);
    if (isWithinReach()) setEach(place);
    Setter::unset(instance);
    instance.present.reset();
  }

  void setEach(size_t place) {
    ConeInstance& instance = cone()[place];
    const Candidates candidates = candidatesFor(*instance.present, instance.use, FEW_VALUES);
    if (!candidates.isComplete) isComplete_ = false;
    std::set<std::string> tried;
    for (const std::optional<std::string>& candidate : candidates.values) {
      if (found_ || !mayGoOn()) break;
      if (!candidate || candidate->empty()) continue;
      --left_;
      std::string value = *candidate;
      const SetCode code = setter_.set(instance, value);
      // Whatever is set, it is not there in this situation.
      if (code == SET_NOT_STORED || code == SET_INVALID_INDEX) break;
      if (!isAccepted(code) || !tried.insert(value).second || !stays(instance)) continue;
      instance.present = NameDomain{Domain::of(value), false};
      if (isWithinReach()) setFrom(place + 1);
    }
  }

  bool mayGoOn() {
    if (deadline_.isOver()) left_ = 0;
    return left_ > 0;
  }

  // What an instance may hold in the situation that is set so far.
  NameDomain presentDomain(const ConeInstance& instance) {
    const ParmDef& parm = instance.parm->parm;
    NameDomain present;
    if (parm.conditionalBounds().empty()) {
      present.values.add(parm.baseBounds());
      return present;
    }
    const Situation situation = gatherBound(*instance.parm, instance.indices, setter_.staged());
    const PresentBounds bounds(parm.conditionalBounds(), situation, UNUSABLE_ACCEPTS);
    const bool isOpen = std::any_of(bounds.applying().begin(), bounds.applying().end(),
                                    [](const BoundsParm* one) { return one->count() == 0; });
    if (isOpen || bounds.applying().empty()) present.values.add(parm.baseBounds());
    for (const BoundsParm* one : bounds.applying()) {
      if (one->count() > 0) present.values.add(*one);
    }
    return present;
  }

  // Whether the goal may be met, with what is set and with anything else as it may be at all.
  bool isWithinReach() {
    return mayHold(goal_, [&](const VariableSource& source) {
      if (source.parm == nullptr) return Domains::abstractOf(source, indexDomain(source));
      const ParmEntry* const reader = goal_.subject->parm;
      const auto found = places_.find(
          {source.parm,
           reader == nullptr ? source.indices : indicesOf(source, reader->parm, *indices_)});
      if (found == places_.end() || !cone()[found->second].present) {
        return domains_.abstractOf(source);
      }
      return Domains::abstractOf(source, *cone()[found->second].present);
    });
  }

  NameDomain indexDomain(const VariableSource& source) {
    if (source.constant != nullptr) return domains_.of(source);
    if (goal_.subject->parm == nullptr) return domains_.of(source);
    NameDomain domain;
    domain.mayBeUndefined = true;
    const std::vector<const IndexDef*>& own = goal_.subject->parm->parm.indices();
    for (size_t i = 0; goal_.seesIndices && i < own.size(); ++i) {
      if (own[i]->name() == source.name) domain = {Domain::of((*indices_)[i]), false};
    }
    return domain;
  }

  void finish() {
    if (!subjectExists() || !goalHolds()) return;
    if (isMet_ && !isMet_(*indices_)) return;
    take();
  }

  void take() {
    NamedValues values;
    for (const ConeInstance& instance : cone()) {
      values.emplace_back(fullName(instance.parm->parm.name(), instance.indices),
                          instance.parm->parm.committedText(instance.indices));
    }
    found_ = std::move(values);
    foundIndices_ = *indices_;
  }

  // Whether the index values of the instance are accepted just now.
  bool subjectExists() {
    ParmEntry* const parm = goal_.subject->parm;
    if (parm == nullptr || indices_->empty()) return true;
    IndexSituations situations(setter_.staged());
    Situation own = gather(*parm, *indices_, setter_.staged());
    for (size_t place = 0; place < indices_->size(); ++place) {
      PresentIndex& index = situations.at(*parm, *indices_, place, own);
      if (!index.isAvailable() || !index.takes((*indices_)[place])) return false;
      parm->parm.bindIndex(own, place, (*indices_)[place]);
    }
    return true;
  }

  bool allStay() {
    return std::all_of(cone().begin(), cone().end(),
                       [&](const ConeInstance& instance) { return stays(instance); });
  }

  // Whether an instance would keep its value: what a correction has left need not be accepted,
  // where it is the source of a translation.
  bool stays(const ConeInstance& instance) {
    const std::string held = instance.parm->parm.committedText(instance.indices);
    std::string value = held;
    return isAccepted(setter_.set(instance, value, true)) && value == held;
  }

  bool goalHolds() {
    return std::all_of(goal_.clauses.begin(), goal_.clauses.end(), [&](const Clause& clause) {
      return std::any_of(clause.begin(), clause.end(), [&](const Wish& wish) {
        return comesTrue(wish, [&](const CompiledExpression& e) { return evaluateNow(e); });
      });
    });
  }

  Value evaluateNow(const CompiledExpression& expression) {
    const ParmEntry* const parm = goal_.subject->parm;
    Situation situation(expression.variables.size());
    for (uint32_t slot = 0; slot < expression.sources.size(); ++slot) {
      const VariableSource& source = expression.sources[slot];
      if (source.parm == nullptr && source.constant == nullptr) {
        bindIndex(source.name, slot, situation);
      } else {
        const IndexTuple own = source.parm == nullptr || parm == nullptr
                                   ? source.indices
                                   : indicesOf(source, parm->parm, *indices_);
        situation.bind(slot, valueOf(source, own, setter_.staged()));
      }
    }
    return expression.program.evaluate(situation);
  }

  void bindIndex(std::string_view name, uint32_t slot, Situation& situation) const {
    if (goal_.subject->parm == nullptr || !goal_.seesIndices) return;
    const std::vector<const IndexDef*>& own = goal_.subject->parm->parm.indices();
    for (size_t i = 0; i < own.size(); ++i) {
      if (own[i]->name() == name) situation.bind(slot, operandOf((*indices_)[i]));
    }
  }

  std::vector<ConeInstance>& cone() { return cone_->instances(); }
  [[nodiscard]] const std::vector<ConeInstance>& cone() const { return cone_->instances(); }

  const Goal& goal_;
  const CompiledText& text_;
  Domains& domains_;
  const std::function<bool(const IndexTuple&)>& isMet_;
  const Deadline& deadline_;
  Setter setter_;
  const IndexTuple* indices_ = nullptr;
  std::optional<Cone> cone_;
  std::map<std::pair<const ParmEntry*, IndexTuple>, size_t> places_;  // in the cone
  bool isComplete_ = true;
  bool areAllTuples_ = true;
  bool isUnsolvable_ = false;
  size_t left_ = MAX_SET_VALUES;
  std::optional<NamedValues> found_;
  IndexTuple foundIndices_;
};

}  // namespace

HealthyResult findHealthy(const Goal& goal, const CompiledText& text, Domains& domains,
                          const std::function<bool(const IndexTuple& indices)>& isMet,
                          const Deadline& deadline) {
  HealthyResult result = HealthySearch(goal, text, domains, isMet, deadline).run();
  if (result.verdict != VERDICT_POSSIBLE) return result;
  const bool isKept = replay(result.witness, text.database());
  std::vector<std::string> names;
  for (const auto& [name, value] : result.witness) names.push_back(name);
  forgetAround(names, text.database());
  if (!isKept) return {};
  return result;
}

void forgetAround(const std::vector<std::string>& names, Database& database) {
  std::vector<ParmEntry*> parms;
  parms.reserve(names.size());
  for (const std::string& name : names) parms.push_back(database.findNamed(name));
  for (ParmEntry* parm : parms) parm->parm.forgetValues();
  for (ParmEntry* parm : dependentsOf(database, parms)) parm->parm.forgetValues();
}

bool moveFromDefaults(const NamedValues& moves, const std::vector<std::string>& names,
                      Database& database) {
  forgetAround(names, database);
  for (const std::string& name : names) {
    Transaction transaction(database);
    std::vector<Change> changes;
    static_cast<void>(transaction.reset(name, true));
    static_cast<void>(commit(transaction, changes));
  }
  return std::all_of(moves.begin(), moves.end(), [&](const auto& move) {
    Transaction transaction(database);
    std::vector<Change> changes;
    if (transaction.set(move.first, move.second, true) != STAGE_DONE) return false;
    // What else may be refused is no matter of this one.
    static_cast<void>(commit(transaction, changes));
    return true;
  });
}

std::optional<std::string> valueKept(ParmEntry& parm, const IndexTuple& indices,
                                     const std::string& value) {
  std::string kept = value;
  if (!isAccepted(Setter().set({&parm, indices}, kept, true))) return std::nullopt;
  return kept;
}

bool replay(const NamedValues& witness, Database& database) {
  std::vector<std::string> names;
  names.reserve(witness.size());
  for (const auto& [name, value] : witness) names.push_back(name);
  // Values that hold each other may need a second round.
  NamedValues moves = witness;
  moves.insert(moves.end(), witness.begin(), witness.end());
  if (!moveFromDefaults(moves, names, database)) return false;
  const Transaction reader(database);
  return std::all_of(witness.begin(), witness.end(), [&](const auto& pair) {
    const std::string* const held = reader.find(pair.first);
    return held != nullptr && *held == pair.second;
  });
}
