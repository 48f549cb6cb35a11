#include <algorithm>

#include "check/proof/questions.h"
#include "check/proof/resting.h"
#include "check/proof/ring_states.h"
#include "check/proof/start_order.h"
#include "sw/parm/parm_name.h"

namespace {

constexpr size_t MANY_SITUATIONS = 200;

// Looks for a situation, one or two changes after the start, in which parameters that refer to each
// other do not rest.
class Ring {
 public:
  Ring(Proof& proof, const Explained& explained, const Subject& subject)
      : proof_(proof),
        explained_(explained),
        database_(proof.text().database()),
        subject_(subject) {}

  void ask() {
    std::optional<Finding> finding;
    const bool isDone = proof_.ask([&] { finding = search(); });
    if (finding) {
      proof_.add(*std::move(finding));
    } else if (!isDone || !isAsked_) {
      proof_.addUndecided({"unsettled", placeOfName(subject_), "some change may not come to rest"});
    }
  }

 private:
  std::optional<Finding> search() {
    const std::vector<IndexTuple> instances = someInstances(subject_.parm->parm, 1);
    if (instances.empty()) return std::nullopt;
    name_ = fullName(subject_.name(), instances.front());
    isAsked_ = findStartOrder(database_, name_, order_);
    if (!isAsked_) return std::nullopt;
    if (isExplained()) return std::nullopt;
    ConfinedCommits commits(order_.names, database_);
    // What the start itself does not bring to rest is told of the start.
    if (findingAfter({}, commits)) return std::nullopt;
    std::optional<Finding> finding;
    return walk(finding, instances.front()) ? finding : searchChanges(commits);
  }

  // Looks at all that changes can lead to. Returns false where that is too much.
  bool walk(std::optional<Finding>& finding, const IndexTuple& indices) {
    Goal goal{&subject_};
    goal.dependsOnRanges = true;
    const std::function<bool(const IndexTuple&)> nothing;
    const HealthyQuestion question{goal, proof_.text(), proof_.domains(), nothing};
    const Reader reader(subject_.parm, indices, indices.size());
    Attempt attempt(question, reader);
    attempt.cone().noteUses(goal, proof_.text());
    const std::vector<std::string> names = attempt.cone().names();
    const WalkEnd end = walkRingStates(attempt, proof_.deadline(), [&](const Commits& commits) {
      finding = findingIn(names);
      if (!finding) return false;
      for (const NamedValues& together : commits) {
        finding->witness.insert(finding->witness.end(), together.begin(), together.end());
      }
      return true;
    });
    return end != WALK_CUT && isAsked_;
  }

  // Whether another finding tells why something does not rest.
  [[nodiscard]] bool isExplained() const {
    return std::ranges::any_of(order_.instances, [&](const Instance& instance) {
      const Subject* const subject = proof_.text().find(instance.parm->parm.name());
      return explained_.explainedText(*subject) != nullptr;
    });
  }

  std::optional<Finding> searchChanges(ConfinedCommits& commits) {
    const NamedValues changes = changesToTry();
    for (const auto& change : changes) {
      if (auto finding = findingAfter({change}, commits)) return finding;
    }
    for (const auto& first : changes) {
      for (const auto& second : changes) {
        if (first.first == second.first) continue;
        if (!mayGoOn()) return std::nullopt;
        if (auto finding = findingAfter({first, second}, commits)) return finding;
      }
    }
    return std::nullopt;
  }

  bool mayGoOn() {
    if (situations_ > MANY_SITUATIONS || proof_.isOver()) isAsked_ = false;
    return isAsked_;
  }

  NamedValues changesToTry() {
    NamedValues changes;
    for (const Instance& instance : order_.instances) {
      if (!instance.isComplete()) continue;
      const std::string& base = instance.parm->parm.name();
      const NameDomain& domain = proof_.domains().worthTrying(database_.findSource(base));
      for (const std::string& value : valuesToTry(domain.values, TRIED_VALUES)) {
        if (!value.empty()) changes.emplace_back(fullName(base, instance.indices), value);
      }
    }
    return changes;
  }

  // What does not rest after `moves`, if anything.
  std::optional<Finding> findingAfter(const NamedValues& moves, ConfinedCommits& commits) {
    ++situations_;
    if (!commits.moveFromDefaults(moves)) return std::nullopt;
    std::optional<Finding> finding = findingIn(order_.names);
    if (finding) finding->witness = moves;
    return finding;
  }

  // What of `names` does not rest in what is set now, if anything.
  std::optional<Finding> findingIn(const std::vector<std::string>& names) {
    const NamedValues before = heldValues(names, database_);
    if (!commitAgain(before, database_, proof_.deadline())) isAsked_ = false;
    const Motions motions = motionsBetween(before, heldValues(names, database_));
    return findRestless(proof_.text(), motions, "here");
  }

  Proof& proof_;
  const Explained& explained_;
  Database& database_;
  const Subject& subject_;
  std::string name_;
  StartOrder order_;
  size_t situations_ = 0;
  bool isAsked_ = true;  // whether no limit was passed
};

// Whether it is the first by name of parameters that refer to each other.
bool leadsARing(const ParmEntry& parm) {
  bool isInRing = false;
  for (const VariableSource& source : parm.sources) {
    if (source.parm == nullptr || source.parm->level < parm.level) continue;
    if (source.parm->rank < parm.rank) return false;
    isInRing = true;
  }
  return isInRing;
}

}  // namespace

void askRings(Proof& proof, const Explained& explained) {
  proof.forEachSubject([&](const Subject& subject) {
    if (subject.parm != nullptr && leadsARing(*subject.parm)) Ring(proof, explained, subject).ask();
  });
}
