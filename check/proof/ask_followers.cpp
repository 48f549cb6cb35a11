#include <algorithm>

#include "check/proof/cone.h"
#include "check/proof/questions.h"
#include "check/proof/replay.h"
#include "check/proof/start_order.h"
#include "database/gather.h"
#include "sw/parm/parm_name.h"

namespace {

constexpr size_t MANY_COMMITS = 200;
constexpr size_t MANY_OPENINGS = 8;

// Whether `is` holds for one of those that move the value of `parm`.
template <typename Is>
bool anyMover(const Proof& proof, const ParmEntry& parm, const Is& is) {
  const auto isOne = [&](const VariableSource& source) {
    return source.parm != nullptr && is(*source.parm);
  };
  return std::ranges::any_of(proof.text().find(parm.parm.name())->movers, isOne) ||
         std::ranges::any_of(parm.indices->own, [&](const IndexEntry* index) {
           return std::ranges::any_of(index->sources, isOne);
         });
}

// All that moves `subject` or locks it, what moves these or is read by their defaults, and so on.
// What locks others is left out: they are set by force.
std::set<const ParmEntry*> whatMatters(const Proof& proof, const Subject& subject) {
  std::set<const ParmEntry*> found;
  std::vector<const ParmEntry*> open = {subject.parm};
  const auto look = [&](const VariableSource& source) {
    if (source.parm != nullptr) open.push_back(source.parm);
  };
  while (!open.empty()) {
    const ParmEntry& parm = *open.back();
    open.pop_back();
    if (!found.insert(&parm).second) continue;
    const Subject& next = *proof.text().find(parm.parm.name());
    std::ranges::for_each(&next == &subject ? parm.sources : next.movers, look);
    for (const CompiledStatement& value : next.defaults) {
      forEachExpression(value, [&](const CompiledExpression& expression) {
        std::ranges::for_each(expression.sources, look);
      });
    }
    for (const IndexEntry* index : parm.indices->own) std::ranges::for_each(index->sources, look);
  }
  return found;
}

// Looks for values that a parameter takes once what it follows has followed, and loses where both
// are set in one commit: nothing depends on it, so it is judged first.
class Follower {
 public:
  // `derived` is what it follows and what follows others.
  Follower(Proof& proof, const Subject& subject, const Subject& derived)
      : proof_(proof), database_(proof.text().database()), subject_(subject), derived_(&derived) {}

  void ask() {
    const std::vector<IndexTuple> instances = someInstances(subject_.parm->parm, 1);
    if (instances.empty()) return;
    indices_ = instances.front();
    name_ = fullName(subject_.name(), indices_);
    bool isDone = search();
    for (const Goal& goal : openings()) {
      if (found_ || !isDone) break;
      const HealthyResult open = proof_.findHealthy(
          goal, [this](const IndexTuple& indices) { return indices == indices_; });
      if (open.verdict != VERDICT_POSSIBLE) continue;
      base_ = open.witness;
      isDone = search();
    }
    if (found_) {
      proof_.add(*std::move(found_));
    } else if (!isDone) {
      proof_.addUndecided(
          findingWith("set in one commit with others, this", "a value that fits can be lost"));
    }
  }

 private:
  // That clients may set it.
  [[nodiscard]] Goal isOpen() const {
    Goal goal{&subject_};
    requirePresence(goal);
    for (const CompiledStatement& control : subject_.ctrlRO) {
      if (control.condition) goal.clauses.push_back({{&*control.condition, WANT_UNTRUE}});
    }
    return goal;
  }

  // Situations to look at besides the defaults: it is open, and each of its ranges counts.
  [[nodiscard]] std::vector<Goal> openings() const {
    std::vector<Goal> goals;
    if (!isOpen().clauses.empty()) goals.push_back(isOpen());
    for (const CompiledStatement& range : subject_.rangeValid) {
      if (!range.condition || goals.size() == MANY_OPENINGS) continue;
      goals.push_back(isOpen());
      goals.back().clauses.push_back({{&*range.condition, WANT_TRUE}});
    }
    return goals;
  }

  // What it depends on.
  [[nodiscard]] Cone cone() const {
    Goal goal{&subject_};
    goal.dependsOnRanges = true;
    for (const auto* controls : {&subject_.ctrlValid, &subject_.ctrlRO}) {
      for (const CompiledStatement& control : *controls) {
        if (control.condition) goal.clauses.push_back({{&*control.condition, WANT_TRUE}});
      }
    }
    Cone cone(goal, Reader(subject_.parm, indices_, indices_.size()), proof_.text());
    cone.noteUses(goal, proof_.text());
    return cone;
  }

  // Whether it holds what others say, whoever sets it.
  [[nodiscard]] bool isDerived(const ParmEntry& parm) const {
    const ParameterRecord& record = *proof_.text().find(parm.parm.name())->record;
    return !parm.sources.empty() &&
           (record.access == ACCESS_RO || record.access == ACCESS_ROSTRICT);
  }

  // Whether a change of `parm` may be seen too late: what it follows itself may be all that lies
  // between.
  [[nodiscard]] bool mayTakeAway(const ParmEntry& parm) const {
    if (&parm == subject_.parm || isDerived(parm)) return false;
    return parm.sources.empty() || derivedFrom(&parm) != nullptr;
  }

  // Leaves in `found_` what is lost from the base on, if anything. Returns whether no limit was
  // passed.
  bool search() {
    isAsked_ = true;
    commits_ = 0;
    const bool isDone = proof_.ask([this] {
      StartOrder order;
      isAsked_ = findStartOrder(database_, name_, order);
      if (!isAsked_) return;
      takeNames(order);
      ConfinedCommits commits(names_, database_);
      const Cone followed = cone();
      leaveSettable(followed, commits);
      for (const ConeInstance& instance : followed.instances()) {
        if (found_ || !isAsked_) break;
        if (mayTakeAway(*instance.parm)) askChange(instance, commits);
      }
    });
    return isDone && isAsked_;
  }

  void takeNames(const StartOrder& order) {
    const std::set<const ParmEntry*> matters = whatMatters(proof_, subject_);
    names_.clear();
    for (const Instance& instance : order.instances) {
      const bool isTaken = instance.isComplete() && matters.contains(instance.parm);
      if (isTaken) names_.push_back(fullName(instance.parm->parm.name(), instance.indices));
    }
  }

  // Leaves of the base what no default and no other value gives.
  void leaveSettable(const Cone& followed, ConfinedCommits& commits) {
    static_cast<void>(commits.moveFromDefaults({}));
    std::erase_if(base_, [&](const auto& move) {
      const auto instance =
          std::ranges::find(followed.instances(), move.first, &ConeInstance::name);
      return instance == followed.instances().end() || isDerived(*instance->parm) ||
             instance->held() == move.second;
    });
  }

  // The values of an instance to try; the empty one, which stands for the default, first.
  std::vector<std::string> valuesOf(const ConeInstance& instance) {
    const NameDomain& domain =
        proof_.domains().worthTrying(database_.findSource(instance.parm->parm.name()));
    std::vector<std::string> values;
    for (const auto& value : candidatesFor(domain, instance.use, TRIED_VALUES).values) {
      if (value && !value->empty()) values.push_back(*value);
    }
    if (domain.values.contains("")) values.insert(values.begin(), std::string());
    return values;
  }

  // Leaves in `found_` what is lost, if anything.
  void askChange(const ConeInstance& changed, ConfinedCommits& commits) {
    const std::string change = changed.name();
    const std::vector<std::string> values = valuesOf(changed);
    std::vector<Domain> ranges;
    for (const std::string& value : values) {
      if (proof_.isOver()) break;
      static_cast<void>(commits.moveFromDefaults(startWith(change, value)));
      ranges.push_back(isWritable() ? presentRange() : Domain());
    }
    isAsked_ = ranges.size() == values.size();
    if (!isAsked_) return;
    for (size_t after = 0; after < values.size(); ++after) {
      for (size_t before = 0; before < values.size(); ++before) {
        if (values[after].empty() || before == after) continue;
        for (const std::string& own : ownValues(ranges[after])) {
          // What the old range takes too is not lost.
          if (ranges[before].contains(own)) continue;
          isAsked_ = ++commits_ <= MANY_COMMITS && !proof_.isOver();
          if (!isAsked_) return;
          tryBoth(startWith(change, values[before]), {change, values[after]}, own, commits);
          if (found_) return;
        }
      }
    }
  }

  // The base, but with `value` of `name`; with its default where that is empty.
  [[nodiscard]] NamedValues startWith(const std::string& name, const std::string& value) const {
    NamedValues start = base_;
    std::erase_if(start, [&](const auto& move) { return move.first == name; });
    if (!value.empty()) start.emplace_back(name, value);
    return start;
  }

  // Whether a value is taken at all in what is set now.
  bool isWritable() {
    const StagedValues staged;
    const ParmDef& parm = subject_.parm->parm;
    if (!parm.isAvailable(gather(*subject_.parm, indices_, staged))) return false;
    return isForced() || !parm.isReadOnly(gatherBound(*subject_.parm, indices_, staged));
  }
  // Whether only the device sets it.
  [[nodiscard]] bool isForced() const {
    return subject_.record->access == ACCESS_RO || subject_.record->access == ACCESS_ROSTRICT;
  }

  // Where everything is taken, one value is as good as another; where that is because no range of
  // several counts, that is told.
  [[nodiscard]] std::vector<std::string> ownValues(const Domain& range) const {
    if (!range.isAll()) return valuesToTry(range, TRIED_VALUES);
    return subject_.rangeValid.empty() ? std::vector<std::string>{"1"} : std::vector<std::string>();
  }

  // What the parameter takes in what is set now.
  Domain presentRange() {
    BoundsParm bounds;
    const StagedValues staged;
    Domain domain;
    if (subject_.parm->parm.range(bounds, gatherBound(*subject_.parm, indices_, staged)) == 0) {
      domain.add(bounds);
    }
    return domain;
  }

  // Sets `own` after `change`, and with it: what the first keeps is not to be lost by the second.
  void tryBoth(const NamedValues& start, const std::pair<std::string, std::string>& change,
               const std::string& own, ConfinedCommits& commits) {
    static_cast<void>(commits.moveFromDefaults(start));
    commitOf({change});
    commitOf({{name_, own}});
    if (held() != own || !isHeld(change)) return;
    static_cast<void>(commits.moveFromDefaults(start));
    const bool wasWritable = isWritable();
    commitOf({change, {name_, own}});
    const std::string left = held();
    if (left == own || !isHeld(change)) return;
    const std::string changed = '"' + std::string(baseName(change.first)) + '"';
    if (const Subject* const derived = derivedFrom(database_.findNamed(change.first))) {
      derived_ = derived;
    }
    const std::string loss =
        wasWritable ? "\" becomes \"" + left + '"'
                    : "\" is passed over, because the parameter was read-only or not available";
    found_ = findingWith("set in one commit with " + changed + ", this",
                         "a value that fits can be lost: here \"" + own + loss + beforeText(start) +
                             "; name " + changed + " instead of \"" + derived_->name() + '"');
    found_->witness = {change, {name_, own}};
  }

  // Commits `values` together; its own as those set it who may, the others by force.
  void commitOf(const NamedValues& values) {
    Transaction transaction(database_);
    for (const auto& [name, value] : values) {
      static_cast<void>(transaction.set(name, value, name != name_ || isForced()));
    }
    commitAll(transaction);
  }

  [[nodiscard]] Finding findingWith(const std::string& subject, const std::string& loss) const {
    return {"late-follower",
            placeOfName(subject_),
            subject + " is judged before \"" + derived_->name() + "\" has followed, and " + loss,
            {{placeOfName(*derived_), "defined here"}}};
  }

  // What it follows and what follows `changed`, or null.
  [[nodiscard]] const Subject* derivedFrom(const ParmEntry* changed) const {
    for (const VariableSource& source : subject_.parm->sources) {
      std::set<const ParmEntry*> seen = {subject_.parm, changed};
      if (source.parm != nullptr && source.parm != changed &&
          follows(*source.parm, changed, seen)) {
        return proof_.text().find(source.parm->parm.name());
      }
    }
    return nullptr;
  }

  [[nodiscard]] bool follows(const ParmEntry& parm, const ParmEntry* changed,
                             std::set<const ParmEntry*>& seen) const {
    return anyMover(proof_, parm, [&](const ParmEntry& mover) {
      if (&mover == changed) return true;
      return seen.insert(&mover).second && follows(mover, changed, seen);
    });
  }

  static std::string beforeText(const NamedValues& start) {
    std::string text;
    for (const auto& [name, value] : start) {
      text.append(text.empty() ? ", where " : " and ").append(name).append(" was \"");
      text.append(value).append("\"");
    }
    return text;
  }

  [[nodiscard]] std::string held() const { return subject_.parm->parm.committedText(indices_); }

  [[nodiscard]] bool isHeld(const std::pair<std::string, std::string>& value) const {
    const std::string* const held = Transaction(database_).find(value.first);
    return held != nullptr && *held == value.second;
  }

  Proof& proof_;
  Database& database_;
  const Subject& subject_;
  const Subject* derived_;
  std::string name_;
  IndexTuple indices_;
  NamedValues base_ = {};           // what is set before, beside the defaults
  std::vector<std::string> names_;  // of what it depends on, and its own
  size_t commits_ = 0;
  std::optional<Finding> found_;
  bool isAsked_ = true;  // whether no limit was passed
};

// What it follows and what itself follows others, or null: what is staged is seen at once, what
// follows from it is not.
const Subject* derivedOf(const Proof& proof, const Subject& subject) {
  for (const VariableSource& source : subject.parm->sources) {
    const bool isDerived = source.parm != nullptr && source.parm != subject.parm &&
                           anyMover(proof, *source.parm, [](const ParmEntry&) { return true; });
    if (isDerived) return proof.text().find(source.parm->parm.name());
  }
  return nullptr;
}

}  // namespace

void askFollowers(Proof& proof) {
  proof.forEachSubject([&](const Subject& subject) {
    if (subject.parm == nullptr || subject.parm->parm.mode() == MODE_NEVER ||
        subject.parm->hasDependents() || proof.text().isNamedByOthers(subject.name())) {
      return;
    }
    const Subject* const derived = derivedOf(proof, subject);
    if (derived != nullptr) Follower(proof, subject, *derived).ask();
  });
}
