#include "check/proof/ring_walk.h"

#include <set>

#include "check/proof/replay.h"

namespace {

constexpr size_t MAX_MOVES = 3;

class RingWalk {
 public:
  RingWalk(Attempt& attempt, TrialLimit& limit, ConfinedCommits& commits)
      : attempt_(attempt), limit_(limit), commits_(commits) {}

  RingWalkResult run(NamedValues& situation) {
    std::set<NamedValues> seen;
    std::vector<NamedValues> open = {{}};
    for (size_t next = 0; next < open.size() && !limit_.isReached(); ++next) {
      const NamedValues moves = open[next];
      if (!commits_.moveFromDefaults(moves)) continue;
      NamedValues reached = attempt_.situation();
      limit_.take(reached.size());
      const bool isNew = seen.insert(reached).second;
      if (isNew && attempt_.isHealthy() && attempt_.isMet()) {
        situation = std::move(reached);
        return RING_MEETS_GOAL;
      }
      if (isNew && moves.size() < MAX_MOVES) addMoves(moves, open);
    }
    return RING_UNDECIDED;
  }

 private:
  // Adds `moves` with each further one.
  void addMoves(const NamedValues& moves, std::vector<NamedValues>& open) {
    const HealthyQuestion& question = attempt_.question();
    for (const ConeInstance& instance : attempt_.cone().instances()) {
      const NameDomain& domain =
          question.domains.of(question.text.database().findSource(instance.parm->parm.name()));
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
};

std::vector<std::string> namesOf(const Cone& cone) {
  std::vector<std::string> names;
  for (const ConeInstance& instance : cone.instances()) names.push_back(instance.name());
  return names;
}

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

std::optional<DomainsByName> ringDomains(Attempt& attempt) {
  const std::vector<std::string> names = namesOf(attempt.cone());
  ConfinedCommits commits(names, attempt.question().text.database());
  static_cast<void>(commits.moveFromDefaults({}));
  DomainsByName start;
  for (const ConeInstance& instance : attempt.cone().instances()) {
    if (instance.held().empty()) return std::nullopt;
    start[instance.parm->parm.name()].values.addText(instance.held());
  }
  return attempt.question().domains.leastOf(start);
}

RingWalkResult walkFromDefaults(Attempt& attempt, TrialLimit& limit, NamedValues& situation) {
  // What more is asked may hold where the goal alone does not tell.
  if (!attempt.question().isMet) {
    const std::optional<DomainsByName> least = ringDomains(attempt);
    if (least && !mayMeetGoal(attempt, *least)) return RING_NEVER_MEETS_IT;
  }
  const std::vector<std::string> names = namesOf(attempt.cone());
  ConfinedCommits commits(names, attempt.question().text.database());
  return RingWalk(attempt, limit, commits).run(situation);
}
