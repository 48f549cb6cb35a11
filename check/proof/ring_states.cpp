#include "check/proof/ring_states.h"

#include <algorithm>
#include <deque>
#include <set>

#include "check/proof/present_value.h"
#include "check/proof/staged_domain.h"
#include "sw/parm/parm_name.h"

namespace {

// Of more, or with more commits from one state, the states are too many.
constexpr size_t MANY_INSTANCES = 4;
constexpr size_t MANY_COMMITS_OF_A_STATE = 2000;

// What a client can do with an instance in one commit.
struct Choice {
  enum Kind { LEAVE, SET, RESET } kind = LEAVE;
  std::string value = {};  // of SET
};
using Choices = std::vector<Choice>;

// Notes an end of a range: what is corrected comes to it. Where it is computed, that may be any.
void noteEnd(const CompiledExpression& end, NameUse& use) {
  if (end.program.usesVariables()) {
    use.isReckoned = true;
    return;
  }
  const Value value = presentValue(end, Reader(), StagedValues());
  if (value.isNumber()) noteNumber(value.number, use);
}

// Notes how a definition tells the values of its own parameter.
void noteOwn(const Subject& subject, NameUse& use) {
  for (const CompiledStatement& range : subject.rangeValid) {
    for (const CompiledItem& item : range.items) {
      if (item.text) use.texts.insert(*item.text);
      forEachExpression(item, [&](const CompiledExpression& end) { noteEnd(end, use); });
    }
  }
  for (const auto& [source, target] : subject.parm->parm.translations()) use.texts.insert(source);
}

class RingStates {
 public:
  RingStates(Attempt& attempt, const Deadline& deadline)
      : cone_(attempt.cone().instances()),
        text_(attempt.question().text),
        deadline_(deadline),
        names_(attempt.cone().names()) {}

  WalkEnd run(const std::function<bool(const Commits&)>& visit) {
    if (cone_.size() > MANY_INSTANCES || !findChoices()) return WALK_CUT;
    ConfinedCommits confined(names_, text_.database());
    static_cast<void>(confined.moveFromDefaults({}));
    add({});
    confined.start();
    add({});
    confined.resetAtOnce();
    add({});
    while (!open_.empty()) {
      const State state = std::move(open_.front());
      open_.pop_front();
      put(state.values);
      if (visit(state.commits)) return WALK_STOPPED;
      if (!goOnFrom(state)) return WALK_CUT;
    }
    return WALK_COMPLETE;
  }

 private:
  struct State {
    std::vector<std::string> values;
    Commits commits;
  };

  // Finds what a client can do with each instance. Returns false where that is too much, or where
  // it may matter which values are not among them.
  bool findChoices() {
    size_t commits = 1;
    for (const ConeInstance& instance : cone_) {
      Candidates candidates = candidatesOf(instance);
      Choices choices = {{Choice::LEAVE}, {Choice::RESET}, {Choice::SET}};
      for (std::optional<std::string>& value : candidates.values) {
        if (value && !value->empty()) choices.push_back({Choice::SET, *std::move(value)});
      }
      commits *= choices.size();
      if (!candidates.isComplete || commits > MANY_COMMITS_OF_A_STATE) return false;
      choices_.push_back(std::move(choices));
    }
    return true;
  }

  // What can be staged, whatever the situation is.
  Candidates candidatesOf(const ConeInstance& instance) const {
    const ParmDef& parm = instance.parm->parm;
    const NameDomain domain{settableDomain(parm), false};
    NameUses uses;
    for (const ConeInstance& other : cone_) {
      // A reset decides by them.
      const Subject& subject = *text_.find(other.parm->parm.name());
      for (const CompiledStatement& value : subject.defaults) noteUses(value, uses);
    }
    NameUse use = instance.use;
    for (const auto& [name, one] : uses) {
      if (baseName(name) == parm.name()) addUse(one, use);
    }
    noteOwn(*text_.find(parm.name()), use);
    Candidates fewest = candidatesFor(domain, use, 0);
    return fewest.isComplete ? fewest : candidatesFor(domain, use, TRIED_VALUES);
  }

  // Adds all that one commit makes of `state`: of one value first, so that the way is short.
  // Returns false where that is too much.
  bool goOnFrom(const State& state) {
    for (const bool isAlone : {true, false}) {
      for (std::vector<size_t> chosen(cone_.size()); advance(chosen);) {
        const auto left = std::count(chosen.begin(), chosen.end(), 0U);
        if ((static_cast<size_t>(left) + 1 == cone_.size()) != isAlone) continue;
        if (commits_ == MAX_RING_COMMITS || deadline_.isOver()) return false;
        ++commits_;
        commitFrom(state, chosen);
      }
    }
    return true;
  }

  // The next choice for all instances; false after the last.
  bool advance(std::vector<size_t>& chosen) const {
    for (size_t i = 0; i < chosen.size(); ++i) {
      if (++chosen[i] < choices_[i].size()) return true;
      chosen[i] = 0;
    }
    return false;
  }

  void commitFrom(const State& state, const std::vector<size_t>& chosen) {
    put(state.values);
    Transaction transaction(text_.database());
    for (size_t i = 0; i < chosen.size(); ++i) {
      stage(choices_[i][chosen[i]], names_[i], transaction);
    }
    commitAll(transaction);
    Commits commits = state.commits;
    commits.emplace_back();
    for (size_t i = 0; i < chosen.size(); ++i) {
      const Choice& choice = choices_[i][chosen[i]];
      if (choice.kind == Choice::LEAVE) continue;
      commits.back().emplace_back(names_[i],
                                  choice.kind == Choice::SET ? choice.value : cone_[i].held());
    }
    add(std::move(commits));
  }

  // What is refused is left alone: that is another choice.
  static void stage(const Choice& choice, const std::string& name, Transaction& transaction) {
    if (choice.kind == Choice::SET) static_cast<void>(transaction.set(name, choice.value, true));
    if (choice.kind == Choice::RESET) static_cast<void>(transaction.reset(name, true));
  }

  void put(const std::vector<std::string>& values) {
    for (const ConeInstance& instance : cone_) instance.parm->parm.forgetValues();
    for (size_t i = 0; i < values.size(); ++i) {
      cone_[i].parm->parm.store(cone_[i].indices, values[i]);
    }
  }

  // Adds what is held now, unless it was reached before.
  void add(Commits commits) {
    std::vector<std::string> values;
    for (const ConeInstance& instance : cone_) values.push_back(instance.held());
    if (seen_.insert(values).second) open_.push_back({std::move(values), std::move(commits)});
  }

  std::vector<ConeInstance>& cone_;
  const CompiledText& text_;
  const Deadline& deadline_;
  const std::vector<std::string> names_;
  std::vector<Choices> choices_;  // by instance; the first is LEAVE
  std::deque<State> open_;        // those that were reached and not visited, in that order
  std::set<std::vector<std::string>> seen_;
  size_t commits_ = 0;
};

}  // namespace

WalkEnd walkRingStates(Attempt& attempt, const Deadline& deadline,
                       const std::function<bool(const Commits&)>& visit) {
  return RingStates(attempt, deadline).run(visit);
}
