#include "ctl/words/bring_up.h"

#include <algorithm>
#include <utility>

#include "ctl/service/bulk.h"
#include "ctl/text/assignment.h"
#include "ctl/words/restoring.h"

namespace {

// After that many rounds, a ring is taken to be one that never comes to rest.
constexpr size_t MOST_ROUNDS = 10;

bool allowsOnlyZero(const InstanceState& state) {
  return state.is(STATE_LIMITED) && state.texts.empty() && state.spans == std::vector<Span>{{0, 0}};
}

}  // namespace

BringUp::BringUp(Service& service, const Levels& levels, const std::vector<Assignment>& known)
    : service_(service), levels_(levels), known_(levels.sorted(known)), transaction_(service) {}

BroughtUp BringUp::run() {
  for (const auto& [level, bases] : levels_.bases()) {
    resetLevel(bases);
    settleRings(bases);
    if (const auto found = known_.find(level); found != known_.end()) {
      const auto refused = commitLevel(service_, transaction_.id(), found->second, true);
      result_.refusedValues.insert(result_.refusedValues.end(), refused.begin(), refused.end());
    }
  }
  resetLateOnes();
  result_.transaction = transaction_.id();
  const std::vector<InstanceState> empty = emptyOnes();
  result_.empty = fillZeros(empty) ? emptyOnes().size() : empty.size();
  return std::move(result_);
}

void BringUp::resetLevel(const Names& bases) {
  const Names names = service_.instances(COMMITTED, bases);
  if (!names.empty()) reset(names);
}

// Resets all at once. Where one is refused, the rest of its level has been left as it was: then
// each is reset alone, so that none keeps another from its default.
void BringUp::reset(const Names& names) {
  done_.insert(names.begin(), names.end());
  if (commitDefaults(service_, transaction_.id(), names, true).isDone()) return;
  for (Refusal& refusal : commitDefaultsAlone(service_, transaction_.id(), names)) {
    refused_.insert(refusal.name);
    result_.refusedDefaults.push_back(std::move(refusal));
  }
}

// The names whose values another reset would change.
Names BringUp::movedBy(const Names& names) {
  Names accepted;
  std::ranges::copy_if(names, std::back_inserter(accepted),
                       [&](const std::string& name) { return !refused_.contains(name); });
  Names moved;
  if (accepted.empty()) return moved;
  const OwnTransaction trial(service_);
  static_cast<void>(service_.reset(trial.id(), accepted, true));
  const std::set<std::string_view> own(accepted.begin(), accepted.end());
  for (Change& change : service_.preview(trial.id()).changes) {
    if (change.before != change.after && own.contains(change.name)) {
      moved.push_back(std::move(change.name));
    }
  }
  return moved;
}

// The parameters that were reset were judged while others of a ring had not followed yet. Where
// nothing would move any more, there is no ring, or it rests.
void BringUp::settleRings(const Names& bases) {
  const Names moved = movedBy(service_.instances(COMMITTED, bases));
  if (moved.empty()) return;
  const Names ring = ringsOf(bases, moved);
  for (size_t round = 0; round < MOST_ROUNDS; ++round) {
    if (!resetMovesAny(ring)) return;
  }
  result_.restless.insert(result_.restless.end(), ring.begin(), ring.end());
}

// What depends on each other is on one level, and everything else it depends on is below.
Names BringUp::ringsOf(const Names& bases, const Names& moved) {
  std::set<std::string> names;
  for (const std::string& name : moved) names.emplace(baseOf(name));
  const Names movedBases(names.begin(), names.end());
  for (const auto& dependencies : service_.dependencies(movedBases)) {
    for (const std::string& name : dependencies.value_or(Names())) names.emplace(baseOf(name));
  }
  Names ring;
  std::ranges::copy_if(bases, std::back_inserter(ring),
                       [&](const std::string& base) { return names.contains(base); });
  return ring;
}

// Resets each instance alone, as one reset may take back what another did.
bool BringUp::resetMovesAny(const Names& ring) {
  const Names names = service_.instances(COMMITTED, ring);
  const std::vector<InstanceState> before = service_.states(COMMITTED, names);
  static_cast<void>(commitDefaultsAlone(service_, transaction_.id(), names));
  done_.insert(names.begin(), names.end());
  const std::vector<InstanceState> after = service_.states(COMMITTED, names);
  return service_.instances(COMMITTED, ring) != names ||
         !std::ranges::equal(before, after, {}, &InstanceState::value, &InstanceState::value);
}

// What has come into being since its level was reset.
void BringUp::resetLateOnes() {
  for (size_t round = 0; round < MOST_ROUNDS; ++round) {
    Names late;
    for (std::string& name : service_.instances(COMMITTED, {})) {
      if (!done_.contains(name)) late.push_back(std::move(name));
    }
    if (late.empty()) return;
    for (const auto& [level, names] : levels_.sorted(late)) reset(names);
  }
}

std::vector<InstanceState> BringUp::emptyOnes() {
  const Names names = service_.instances(COMMITTED, {});
  result_.instances = names.size();
  if (names.empty()) return {};
  std::vector<InstanceState> states = service_.states(COMMITTED, names);
  std::erase_if(states, [](const InstanceState& state) { return !state.value.empty(); });
  return states;
}

// A reset leaves the empty value, which counts as 0, as it is where 0 is all that is allowed. But a
// definition may turn 0 into another value.
bool BringUp::fillZeros(const std::vector<InstanceState>& empty) {
  Names names;
  Names bases;
  for (const InstanceState& state : empty) {
    if (!allowsOnlyZero(state)) continue;
    names.push_back(state.name);
    bases.emplace_back(baseOf(state.name));
  }
  const std::vector<Definition> definitions = service_.definitions(bases);
  std::vector<Assignment> zeros;
  for (size_t i = 0; i < names.size(); ++i) {
    const auto& known = definitions[i].translations;
    if (std::ranges::find(known, "0", &Assignment::name) != known.end()) continue;
    zeros.push_back({names[i], "0"});
  }
  for (const auto& [level, assignments] : levels_.sorted(zeros)) {
    static_cast<void>(commitLevel(service_, transaction_.id(), assignments, true));
  }
  return !zeros.empty();
}
