#include "check/proof/healthy.h"

#include <algorithm>
#include <set>

#include "check/proof/cone_solver.h"
#include "check/proof/ring_walk.h"

namespace {

// What depends on more than these is left undecided: to set them all takes the square of their
// number, for each question.
constexpr size_t MANY_INSTANCES = 60;

// Sets the instances of a cone, each to every value that matters, one after the other.
class Search {
 public:
  // With `goesAstray`, also where an instance takes every value though it has ranges.
  Search(Attempt& attempt, TrialLimit& limit, bool goesAstray)
      : attempt_(attempt),
        limit_(limit),
        cone_(attempt.cone().instances()),
        goesAstray_(goesAstray) {}

  // The situation that meets the goal, if one was found.
  std::optional<NamedValues> run() {
    setFrom(0);
    return std::move(found_);
  }
  // Whether every situation was tried that the goal can tell from others.
  [[nodiscard]] bool isComplete() const { return isComplete_; }
  // Whether there was such an instance.
  [[nodiscard]] bool hasStrayed() const { return hasStrayed_; }
  // Whether the goal may be met where an instance is not there, whatever that holds.
  [[nodiscard]] bool isMetOtherwise() const { return isMetOtherwise_; }

 private:
  void setFrom(size_t place) {
    if (place == cone_.size()) {
      if (absent_ > 0) {
        isMetOtherwise_ = isMetOtherwise_ || isWithinReach();
      } else if (attempt_.isMet()) {
        found_ = attempt_.situation();
      }
      return;
    }
    ConeInstance& instance = cone_[place];
    if (!attempt_.isThere(instance)) return leaveOut(place);
    instance.present = attempt_.presentDomain(instance);
    const bool isStray = Attempt::isStray(instance, *instance.present);
    hasStrayed_ = hasStrayed_ || isStray;
    if ((goesAstray_ || !isStray) && isWithinReach()) setEach(place);
    Setter::unset(*instance.parm, instance.indices);
    instance.present.reset();
  }

  void setEach(size_t place) {
    ConeInstance& instance = cone_[place];
    const Candidates candidates = candidatesFor(*instance.present, instance.use, TRIED_VALUES);
    isComplete_ = isComplete_ && candidates.isComplete;
    std::set<std::string> tried;
    for (const std::optional<std::string>& candidate : candidates.values) {
      if (found_ || limit_.isReached()) break;
      if (!candidate || candidate->empty()) continue;
      limit_.take(1);
      std::string value = *candidate;
      const SetCode code = attempt_.setter().set(*instance.parm, instance.indices, value);
      if (!isAccepted(code) || !tried.insert(value).second || !stays(instance)) continue;
      instance.present = NameDomain{Domain::of(value), false};
      if (isWithinReach()) setFrom(place + 1);
    }
  }

  // Goes on without an instance that is not there. What others follow of it is not known.
  void leaveOut(size_t place) {
    if (isMetOtherwise_ || !isWithinReach()) return;
    const std::vector<ParmEntry*>& dependents = cone_[place].parm->dependents;
    const bool isFollowed = std::any_of(cone_.begin(), cone_.end(), [&](const ConeInstance& other) {
      return std::find(dependents.begin(), dependents.end(), other.parm) != dependents.end();
    });
    if (isFollowed) {
      isMetOtherwise_ = true;
      return;
    }
    ++absent_;
    setFrom(place + 1);
    --absent_;
  }

  // What a correction has left need not be accepted, where it is the source of a translation.
  bool stays(const ConeInstance& instance) {
    return attempt_.setter().stays(*instance.parm, instance.indices);
  }

  // Whether the goal may be met, with what is set and with anything else as it may be at all.
  bool isWithinReach() {
    const HealthyQuestion& question = attempt_.question();
    Domains& domains = question.domains;
    return mayHold(question.goal, [&](const VariableSource& source) {
      const Reader& reader = attempt_.reader();
      if (source.parm == nullptr) {
        return Domains::abstractOf(source, reader.domainOf(source, domains));
      }
      const ConeInstance* const instance = attempt_.cone().find(source, reader);
      return instance != nullptr && instance->present
                 ? Domains::abstractOf(source, *instance->present)
                 : domains.abstractOf(source);
    });
  }

  Attempt& attempt_;
  TrialLimit& limit_;
  std::vector<ConeInstance>& cone_;
  bool goesAstray_;
  bool hasStrayed_ = false;
  bool isComplete_ = true;
  bool isMetOtherwise_ = false;
  size_t absent_ = 0;  // instances that are left out
  std::optional<NamedValues> found_;
};

// Tries to meet a goal for all its readers.
class HealthyTrials {
 public:
  HealthyTrials(const HealthyQuestion& question, const Deadline& deadline)
      : question_(question),
        readers_(readersOf(*question.goal.subject, question.goal.seesIndices, question.text)),
        limit_(MAX_SET_VALUES, deadline) {}

  HealthyResult run() {
    bool isImpossible = readers_.areAll;
    for (const Reader& reader : readers_.all) {
      if (found_ || limit_.isReached()) break;
      isImpossible = tryFor(reader) && isImpossible;
    }
    isImpossible = isImpossible && !limit_.isReached();
    // The solver does not know what else is asked of the situation, nor what never settles.
    const bool isSolvable = !question_.isMet && !isRestless_;
    if (!found_ && !isImpossible && isSolvable) isImpossible = solveForAll();
    if (found_) {
      return {VERDICT_POSSIBLE,   *std::move(found_), tried_->indices(), isAstray_, false,
              std::move(commits_)};
    }
    if (!isImpossible) return {VERDICT_UNDECIDED, {}, {}, isAstray_};
    return {VERDICT_IMPOSSIBLE, {}, {}, isAstray_, isMetOtherwise_};
  }

 private:
  // Returns whether the goal is proved to be out of reach.
  bool tryFor(const Reader& reader) {
    tried_ = &reader;
    Attempt attempt(question_, reader);
    if (attempt.cone().instances().size() > MANY_INSTANCES) return false;
    attempt.cone().noteUses(question_.goal, question_.text);
    if (attempt.cone().hasRing()) return tryRing(attempt);
    Search search(attempt, limit_, false);
    found_ = search.run();
    isMetOtherwise_ = isMetOtherwise_ || search.isMetOtherwise();
    if (found_) isAstray_ = false;
    if (found_ || !search.hasStrayed()) return search.isComplete();
    isAstray_ = true;
    Search further(attempt, limit_, true);
    found_ = further.run();
    isMetOtherwise_ = isMetOtherwise_ || further.isMetOtherwise();
    return further.isComplete();
  }

  bool tryRing(Attempt& attempt) {
    HealthyResult result = walkFromDefaults(attempt, limit_);
    isAstray_ = result.isAstray;
    isRestless_ = isRestless_ || (result.isAstray && result.verdict == VERDICT_UNDECIDED);
    isMetOtherwise_ = isMetOtherwise_ || result.isMetOtherwise;
    if (result.verdict == VERDICT_POSSIBLE) found_ = std::move(result.witness);
    commits_ = std::move(result.commits);
    return result.verdict == VERDICT_IMPOSSIBLE;
  }

  // Leaves it to the solver, for each reader. What that says is possible is tried on the engine.
  bool solveForAll() {
    isMetOtherwise_ = false;
    for (const Reader& reader : readers_.all) {
      if (limit_.isOver()) return false;
      tried_ = &reader;
      Attempt attempt(question_, reader);
      if (attempt.cone().instances().size() > MANY_INSTANCES) return false;
      const bool isRing = attempt.cone().hasRing();
      const DomainsByName least = isRing ? ringDomains(attempt, STAGED_ALONE) : DomainsByName();
      const AnywhereResult result = solveCone(attempt, least);
      const bool isProposed = result.verdict == VERDICT_POSSIBLE && !isRing;
      if (isProposed) trySolution(attempt, result.assignment);
      if (result.verdict != VERDICT_IMPOSSIBLE) return false;
      isMetOtherwise_ = isMetOtherwise_ || mayBeMetOtherwise(attempt, isRing);
    }
    return readers_.areAll;
  }

  static bool mayBeMetOtherwise(Attempt& attempt, bool isRing) {
    const std::vector<ConeInstance>& cone = attempt.cone().instances();
    const bool someMayBeAbsent = std::any_of(
        cone.begin(), cone.end(), [](const ConeInstance& each) { return mayBeAbsent(*each.parm); });
    if (!isRing && !someMayBeAbsent) return false;
    const DomainsByName least = isRing ? ringDomains(attempt, STAGED_TOGETHER) : DomainsByName();
    return solveCone(attempt, least, someMayBeAbsent).verdict != VERDICT_IMPOSSIBLE;
  }

  void trySolution(Attempt& attempt, const Assignment& solution) {
    const std::vector<ConeInstance>& cone = attempt.cone().instances();
    for (const ConeInstance& instance : cone) {
      const auto found = solution.find(instance.name());
      std::string value = found == solution.end() ? std::string() : found->second.value_or("");
      if (!isAccepted(attempt.setter().set(*instance.parm, instance.indices, value))) break;
    }
    if (attempt.isHealthy() && attempt.isMet()) found_ = attempt.situation();
    for (const ConeInstance& instance : cone) Setter::unset(*instance.parm, instance.indices);
  }

  const HealthyQuestion& question_;
  Readers readers_;
  TrialLimit limit_;
  const Reader* tried_ = nullptr;  // the last
  bool isMetOtherwise_ = false;
  bool isRestless_ = false;  // whether a ring does not rest after the start
  bool isAstray_ = false;    // whether some instance may go astray, and nothing else is known
  std::optional<NamedValues> found_;
  Commits commits_;  // those of `found_`, if need be
};

}  // namespace

HealthyResult findHealthy(const Goal& goal, const CompiledText& text, Domains& domains,
                          const std::function<bool(const IndexTuple& indices)>& isMet,
                          const Deadline& deadline, SolverBudget* budget) {
  const HealthyQuestion question{goal, text, domains, isMet, budget};
  HealthyResult result = HealthyTrials(question, deadline).run();
  const bool isReplayed =
      result.verdict != VERDICT_POSSIBLE || replay(result.witness, text.database(), result.commits);
  if (!isReplayed) return {};
  return result;
}
