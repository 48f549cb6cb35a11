#include "check/proof/ring_walk.h"

#include <set>

#include "check/proof/replay.h"
#include "sw/parm/parm_name.h"

namespace {

constexpr uint64_t FEW_VALUES = 12;
constexpr size_t MAX_MOVES = 3;

class RingWalk {
 public:
  RingWalk(Attempt& attempt, TrialLimit& limit, ConfinedCommits& commits)
      : attempt_(attempt), limit_(limit), commits_(commits) {}

  RingWalkResult run(NamedValues& situation) {
    if (!mayMeetGoal()) return RING_NEVER_MEETS_IT;
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
      for (const auto& value : candidatesFor(domain, instance.use, FEW_VALUES).values) {
        if (!value || value->empty()) continue;
        open.push_back(moves);
        open.back().emplace_back(instance.name(), *value);
      }
    }
  }

  // Whether intervals leave the goal possible, with all that can follow from the defaults.
  bool mayMeetGoal() {
    const HealthyQuestion& question = attempt_.question();
    Domains& domains = question.domains;
    if (question.isMet) return true;
    static_cast<void>(commits_.moveFromDefaults({}));
    std::map<std::string, Domain, std::less<>> start;
    for (const ConeInstance& instance : attempt_.cone().instances()) {
      // What its own default leaves unset has no value to begin from.
      if (instance.held().empty()) return true;
      start[instance.parm->parm.name()].addText(instance.held());
    }
    const auto least = domains.leastOf(start);
    return mayHold(question.goal, [&](const VariableSource& source) {
      if (source.parm == nullptr) {
        return Domains::abstractOf(source, attempt_.reader().domainOf(source, domains));
      }
      const auto found = least.find(baseName(source.name));
      return found == least.end() ? domains.abstractOf(source)
                                  : Domains::abstractOf(source, found->second);
    });
  }

  Attempt& attempt_;
  TrialLimit& limit_;
  ConfinedCommits& commits_;
};

}  // namespace

RingWalkResult walkFromDefaults(Attempt& attempt, TrialLimit& limit, NamedValues& situation) {
  std::vector<std::string> names;
  for (const ConeInstance& instance : attempt.cone().instances()) names.push_back(instance.name());
  ConfinedCommits commits(names, attempt.question().text.database());
  return RingWalk(attempt, limit, commits).run(situation);
}
