#include "ctl/words/unlock.h"

#include <algorithm>
#include <map>
#include <optional>
#include <set>

#include "base/number.h"
#include "ctl/service/bulk.h"
#include "ctl/text/assignment.h"
#include "ctl/text/range_text.h"
#include "ctl/words/candidates.h"

namespace {

constexpr size_t MOST_TRIALS = 1000;
constexpr size_t MOST_FIRST_TRIALS = 500;  // which leaves some for the wider search
constexpr ptrdiff_t MOST_VALUES_AT_ENDS = 5;

// Tries sets of changes until there were too many.
class UnlockTrials {
 public:
  UnlockTrials(Client& client, const UnlockGoal& goal) : client_(client), goal_(goal) {}

  [[nodiscard]] size_t tried() const { return tried_.size(); }
  [[nodiscard]] bool isExhausted() const { return tried_.size() >= most_; }
  void allow(size_t most) { most_ = most; }

  // Whether the changes reach the goal, by themselves: all of them stored as they are. What was
  // tried in vain is not tried again.
  std::optional<Unlock> tryChanges(const std::vector<Assignment>& changes) {
    if (isExhausted() || !tried_.insert(trialOf(changes)).second) return std::nullopt;
    const OwnTransaction transaction(client_.service);
    if (!client_.service.set(transaction.id(), changes, false).empty()) return std::nullopt;
    // A value may be judged with the changes as they are, before anything has followed them.
    const bool isReachedAtOnce = goal_.value && isReached(transaction);
    std::optional<Unlock> alone = previewed(transaction, changes, changes);
    const bool isReachedAfter = alone && isReachedBehind(transaction, *alone);
    if (!goal_.value) return isReachedAfter ? alone : std::nullopt;
    if (!isReachedAtOnce && !isReachedAfter) return std::nullopt;
    std::optional<Unlock> together = tryTogether(changes);
    if (together || !isReachedAfter) return together;
    return tryBehind(transaction, *alone);
  }

 private:
  [[nodiscard]] bool isReached(const OwnTransaction& transaction) {
    const InstanceState state = client_.service.states(transaction.id(), {goal_.name}).front();
    return state.is(STATE_WRITABLE) && (!goal_.value || isAllowed(state, *goal_.value));
  }

  // Whether the goal is reached once the changes, which are staged, are committed.
  bool isReachedBehind(const OwnTransaction& transaction, const Unlock& first) {
    return (first.effects.empty() || stageLeft(transaction, first)) && isReached(transaction);
  }

  // Stages what the commit of the changes leaves, as by the device itself, so that nothing else
  // follows. False where it cannot be staged.
  bool stageLeft(const OwnTransaction& transaction, const Unlock& first) {
    std::vector<Assignment> left = first.changes;
    for (const Change& effect : first.effects) left.push_back({effect.name, effect.after});
    return stageValues(client_.service, transaction.id(), left, true).empty();
  }

  using Trial = std::map<std::string, std::string>;  // values of names

  static Trial trialOf(const std::vector<Assignment>& changes) {
    Trial trial;
    for (const Assignment& change : changes) trial.emplace(change.name, change.value);
    return trial;
  }

  [[nodiscard]] Assignment wanted() const { return {goal_.name, *goal_.value}; }

  [[nodiscard]] std::vector<Assignment> withWanted(std::vector<Assignment> changes) const {
    changes.push_back(wanted());
    return changes;
  }

  // One commit of the changes and the value.
  std::optional<Unlock> tryTogether(const std::vector<Assignment>& changes) {
    const std::vector<Assignment> all = withWanted(changes);
    const OwnTransaction transaction(client_.service);
    if (!client_.service.set(transaction.id(), all, false).empty()) return std::nullopt;
    return previewed(transaction, changes, all);
  }

  // A commit of the value behind that of the changes.
  std::optional<Unlock> tryBehind(const OwnTransaction& transaction, const Unlock& first) {
    if (!stageLeft(transaction, first)) return std::nullopt;
    if (!client_.service.set(transaction.id(), {wanted()}, false).empty()) return std::nullopt;
    std::optional<Unlock> found = previewed(transaction, first.changes, withWanted(first.changes));
    if (found) found->commits = {first.changes, {wanted()}};
    return found;
  }

  // What else changes, where a commit stores all that is `asked` as it is, and does not fail.
  std::optional<Unlock> previewed(const OwnTransaction& transaction,
                                  const std::vector<Assignment>& changes,
                                  const std::vector<Assignment>& asked) {
    const Preview preview = client_.service.preview(transaction.id());
    if (!preview.refused.empty() || !preview.failing.empty()) return std::nullopt;
    Unlock unlock = {.changes = changes, .commits = {asked}};
    std::map<std::string, std::string> after;
    for (const Change& change : preview.changes) {
      after.emplace(change.name, change.after);
      const auto own = std::ranges::find(asked, change.name, &Assignment::name);
      if (own == asked.end() && change.before != change.after) unlock.effects.push_back(change);
    }
    // What is tried is another value than the present one, so it changes unless it is cut.
    const bool areStored = std::ranges::all_of(asked, [&](const Assignment& each) {
      const auto found = after.find(each.name);
      return found != after.end() && isSameValue(each.value, found->second);
    });
    return areStored ? std::optional(std::move(unlock)) : std::nullopt;
  }

  Client& client_;
  const UnlockGoal& goal_;
  size_t most_ = MOST_FIRST_TRIALS;
  std::set<Trial> tried_;
};

// Goes from a number that is enough towards one that is not, as far as it stays enough.
Unlock nearest(UnlockTrials& trials, const Candidate& candidate, Unlock enough, int64_t tooLittle) {
  int64_t good = wholeNumber(enough.changes.front().value).value_or(0);
  while (std::abs(good - tooLittle) > 1 && !trials.isExhausted()) {
    const int64_t middle = tooLittle + (good - tooLittle) / 2;
    std::optional<Unlock> better =
        trials.tryChanges({{candidate.state.name, std::to_string(middle)}});
    if (better) {
      enough = *std::move(better);
      good = middle;
    } else {
      tooLittle = middle;
    }
  }
  return enough;
}

// The number from which to go on towards `value`: the nearest that was tried on its side before.
std::optional<int64_t> startTowards(const Candidate& candidate, const std::string& value) {
  const std::optional<int32_t> good = wholeNumber(value);
  const std::optional<int32_t> own = wholeNumber(candidate.state.value);
  if (!good || !own || candidate.state.value.empty()) return std::nullopt;
  int64_t start = *own;
  for (const std::string& tried : candidate.values) {
    if (tried == value) break;
    const std::optional<int32_t> number = wholeNumber(tried);
    if (number &&
        (*good > *own ? *number > start && *number < *good : *number<start&& * number> * good)) {
      start = *number;
    }
  }
  return start;
}

std::optional<Unlock> unlockBy(UnlockTrials& trials, const Candidate& candidate) {
  for (const std::string& value : candidate.values) {
    std::optional<Unlock> found = trials.tryChanges({{candidate.state.name, value}});
    if (!found) continue;
    const std::optional<int64_t> start = startTowards(candidate, value);
    return start ? nearest(trials, candidate, *std::move(found), *start) : found;
  }
  return std::nullopt;
}

// The values to try in a pair: the nearest ones, the last ones, and those that need another.
std::vector<std::string> few(const Candidate& candidate) {
  std::vector<std::string> values = candidate.values;
  if (std::ssize(values) > 2 * MOST_VALUES_AT_ENDS) {
    values.erase(values.begin() + MOST_VALUES_AT_ENDS, values.end() - MOST_VALUES_AT_ENDS);
  }
  values.insert(values.end(), candidate.beyond.begin(), candidate.beyond.end());
  return values;
}

std::optional<Unlock> unlockBy(UnlockTrials& trials, const Candidate& one, const Candidate& other) {
  for (const std::string& first : few(one)) {
    for (const std::string& second : few(other)) {
      std::optional<Unlock> found =
          trials.tryChanges({{one.state.name, first}, {other.state.name, second}});
      if (found) return found;
    }
  }
  return std::nullopt;
}

std::optional<Unlock> unlockByPair(UnlockTrials& trials, const std::vector<Candidate>& candidates) {
  for (size_t i = 0; i < candidates.size(); ++i) {
    for (size_t j = i + 1; j < candidates.size(); ++j) {
      std::optional<Unlock> found = unlockBy(trials, candidates[i], candidates[j]);
      if (found) return found;
    }
  }
  return std::nullopt;
}

std::vector<Unlock> unlocksBy(UnlockTrials& trials, const std::vector<Candidate>& candidates) {
  std::vector<Unlock> all;
  for (const Candidate& candidate : candidates) {
    std::optional<Unlock> found = unlockBy(trials, candidate);
    if (found) all.push_back(*std::move(found));
  }
  std::ranges::stable_sort(all, {}, [](const Unlock& each) { return each.effects.size(); });
  if (!all.empty()) return all;
  std::optional<Unlock> found = unlockByPair(trials, candidates);
  if (found) all.push_back(*std::move(found));
  return all;
}

}  // namespace

UnlockSearch findUnlocks(Client& client, const UnlockGoal& goal,
                         const std::vector<Reason>& reasons) {
  const std::string wanted = goal.value.value_or(std::string());
  const std::vector<Reason> deciding = decidingReasons(reasons, goal.value.has_value());
  UnlockTrials trials(client, goal);
  UnlockSearch search;
  search.found = unlocksBy(trials, findCandidates(client, goal.name, deciding, wanted));
  if (search.found.empty()) {
    trials.allow(MOST_TRIALS);
    search.found = unlocksBy(trials, findWiderCandidates(client, goal.name, wanted));
  }
  search.tried = trials.tried();
  return search;
}
