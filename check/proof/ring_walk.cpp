#include "check/proof/ring_walk.h"

#include <set>

#include "check/proof/replay.h"
#include "check/proof/resting.h"
#include "check/proof/ring_states.h"

namespace {

constexpr size_t MAX_MOVES = 3;

// What a walk has come across.
class Visits {
 public:
  explicit Visits(Attempt& attempt) : attempt_(attempt) {}

  // Looks at what is set now, where `commits` have led. Returns whether it is what is looked for.
  bool visit(const Commits& commits) {
    if (!attempt_.isMet()) return false;
    if (!attempt_.isHealthy()) {
      isMetOtherwise_ = isMetOtherwise_ || attempt_.isAtRest();
      return false;
    }
    const bool isAstray = attempt_.isAstray();
    if (isAstray && best_.isAstray) return false;
    best_ = {VERDICT_POSSIBLE, attempt_.situation(), {}, isAstray, false, commits};
    return !isAstray;
  }

  // With whether every situation was visited.
  HealthyResult result(bool areAll) && {
    if (best_.verdict == VERDICT_POSSIBLE) return std::move(best_);
    return {areAll ? VERDICT_IMPOSSIBLE : VERDICT_UNDECIDED, {}, {}, false, isMetOtherwise_};
  }

 private:
  Attempt& attempt_;
  HealthyResult best_;
  bool isMetOtherwise_ = false;
};

// Some situations of a ring: a few changes after the defaults, one after the other.
class RingWalk {
 public:
  RingWalk(Attempt& attempt, TrialLimit& limit, ConfinedCommits& commits, Visits& visits)
      : attempt_(attempt), limit_(limit), commits_(commits), visits_(visits) {}

  void run() {
    std::set<NamedValues> seen;
    std::vector<NamedValues> open = {{}};
    for (size_t next = 0; next < open.size() && !limit_.isReached(); ++next) {
      const NamedValues moves = open[next];
      if (!commits_.moveFromDefaults(moves)) continue;
      NamedValues reached = attempt_.situation();
      limit_.take(reached.size());
      if (!seen.insert(std::move(reached)).second) continue;
      if (visits_.visit({})) return;
      if (moves.size() < MAX_MOVES) addMoves(moves, open);
    }
  }

 private:
  // Adds `moves` with each further one.
  void addMoves(const NamedValues& moves, std::vector<NamedValues>& open) {
    const HealthyQuestion& question = attempt_.question();
    for (const ConeInstance& instance : attempt_.cone().instances()) {
      const NameDomain& domain = question.domains.worthTrying(
          question.text.database().findSource(instance.parm->parm.name()));
      for (const auto& value : candidatesFor(domain, instance.use, TRIED_VALUES).values) {
        if (!value || value->empty()) continue;
        open.push_back(moves);
        open.back().emplace_back(instance.name(), *value);
      }
    }
  }

  Attempt& attempt_;
  TrialLimit& limit_;
  ConfinedCommits& commits_;
  Visits& visits_;
};

// Whether intervals leave the goal possible, with all that can follow from the defaults.
bool mayMeetGoal(const Attempt& attempt, const DomainsByName& least) {
  Domains& domains = attempt.question().domains;
  return mayHold(attempt.question().goal, [&](const VariableSource& source) {
    if (source.parm == nullptr) {
      return Domains::abstractOf(source, attempt.reader().domainOf(source, domains));
    }
    const ConeInstance* const instance = attempt.cone().find(source, attempt.reader());
    if (instance == nullptr) return domains.abstractOf(source);
    return Domains::abstractOf(source, least.at(instance->parm->parm.name()));
  });
}

}  // namespace

DomainsByName ringDomains(Attempt& attempt, Staging staging) {
  const std::vector<std::string> names = attempt.cone().names();
  ConfinedCommits commits(names, attempt.question().text.database());
  DomainsByName start;
  const auto addHeld = [&] {
    for (const ConeInstance& instance : attempt.cone().instances()) {
      start[instance.parm->parm.name()].values.addText(instance.held());
    }
  };
  static_cast<void>(commits.moveFromDefaults({}));
  addHeld();
  commits.start();
  addHeld();
  commits.resetAtOnce();
  addHeld();
  return attempt.question().domains.leastOf(start, staging);
}

HealthyResult walkFromDefaults(Attempt& attempt, TrialLimit& limit) {
  const std::vector<std::string> names = attempt.cone().names();
  Database& database = attempt.question().text.database();
  if (!restAfterStart(names, database, limit.deadline())) return {VERDICT_UNDECIDED, {}, {}, true};
  // What more is asked may hold where the goal alone does not tell.
  const bool isGoalAll = !attempt.question().isMet;
  const auto isNeverMet = [&](Staging staging) {
    return isGoalAll && !mayMeetGoal(attempt, ringDomains(attempt, staging));
  };
  if (isNeverMet(STAGED_TOGETHER)) return {VERDICT_IMPOSSIBLE};
  Visits ofAll(attempt);
  const WalkEnd end = walkRingStates(attempt, limit.deadline(),
                                     [&](const Commits& commits) { return ofAll.visit(commits); });
  if (end != WALK_CUT) return std::move(ofAll).result(end == WALK_COMPLETE);
  if (isNeverMet(STAGED_ALONE)) return {VERDICT_IMPOSSIBLE, {}, {}, false, true};
  ConfinedCommits commits(names, database);
  Visits ofSome(attempt);
  RingWalk(attempt, limit, commits, ofSome).run();
  return std::move(ofSome).result(false);
}
