#include "explore/probe.h"

#include <algorithm>
#include <span>
#include <utility>

#include "play/outcome.h"
#include "play/recipe_client.h"
#include "play/session_words.h"
#include "sw/parm/parm_name.h"

namespace {

using Texts = std::vector<std::string>;

std::string joined(const Texts& changes) {
  std::string text;
  for (const std::string& change : changes) {
    text += (text.empty() ? "" : " ") + spelledChange(change);
  }
  return text;
}

// As an outcome has it: what was announced, and a refusal.
std::string shown(const Answer& answer) {
  std::string text = joined(answer.changes);
  if (answer.error.empty()) return text;
  return text + (text.empty() ? "" : " ") + "refused: " + answer.error;
}

std::string shownOrNothing(const Answer& answer) {
  const std::string text = shown(answer);
  return text.empty() ? "nothing" : text;
}

// Those of `changes` that are among `known`, or that are not.
Texts those(const Texts& changes, const Texts& known, bool areAmong) {
  Texts chosen;
  std::ranges::copy_if(changes, std::back_inserter(chosen), [&](const std::string& change) {
    return (std::ranges::find(known, change) != known.end()) == areAmong;
  });
  return chosen;
}

// The first of the changes that only one of two answers has, as a name; `otherwise` without any.
std::string differing(const Texts& a, const Texts& b, const std::string& otherwise) {
  const Texts only = those(a, b, false);
  const Texts others = those(b, a, false);
  const std::string& change = !only.empty() ? only.front() : !others.empty() ? others.front() : "";
  return std::string(baseName(change.empty() ? otherwise : change.substr(0, change.find('='))));
}

// What the commit has refused, as the log names it: that may be something that follows what was
// set. `otherwise` where there is no log.
std::string refused(const Texts& log, const std::string& otherwise) {
  constexpr std::string_view START = "commit: ERROR \"";
  for (const std::string& line : log) {
    const size_t begin = line.find(START);
    if (begin == std::string::npos) continue;
    const std::string name = line.substr(begin + START.size());
    return std::string(baseName(name.substr(0, name.find('"'))));
  }
  return std::string(baseName(otherwise));
}

bool intersect(const std::set<std::string>& a, const std::set<std::string>& b) {
  return std::ranges::any_of(a, [&](const std::string& name) { return b.contains(name); });
}

}  // namespace

DependencyMap::DependencyMap(Device& device, const KnownDevice& known) {
  for (const auto& [parm, indices] : known.parms) {
    std::set<std::string>& dependencies = dependencies_[parm];
    const Answer answer = device.call({"get_deps", 0, {parm}});
    isWhole_ = isWhole_ && answer.error.empty();
    for (const std::string& name : answer.texts) dependencies.emplace(baseName(name));
    reached_[parm].insert(parm);
  }
  for (const auto& [parm, dependencies] : dependencies_) {
    for (const std::string& name : dependencies) reached_[name].insert(parm);
  }
}

const std::set<std::string>& DependencyMap::dependencies(const std::string& parm) const {
  return dependencies_.at(parm);
}

bool DependencyMap::areIndependent(const std::string& parm, const std::string& other) const {
  return isWhole_ && !intersect(reached_.at(parm), reached_.at(other));
}

Probe::Probe(Device& device, const DeviceNames& names)
    : device_(device),
      names_(names),
      work_(device.call({"start"}).transaction),
      scratch_(device.call({"start"}).transaction) {}

Answer Probe::stage(uint32_t id, const WalkStep& step) {
  if (step.isReset()) return device_.call({step.method, id, {step.name}});
  return device_.call({step.method, id, {step.name}, {step.value}});
}

void Probe::renew(uint32_t& id) {
  static_cast<void>(device_.call({"end", id}));
  id = device_.call({"start"}).transaction;
}

// What the commit of a step would do.
Answer Probe::tryAlone(const WalkStep& step) {
  Answer answer = stage(scratch_, step);
  if (answer.error.empty()) answer = device_.call({"try", scratch_});
  renew(scratch_);
  return answer;
}

Probe::Change Probe::changeIn(const std::string& change) const {
  const std::string_view name = names_.nameIn(change);
  if (name.empty()) return {};
  return {std::string(name), change.substr(name.size() + 1)};
}

std::string Probe::valueOf(const std::string& name) {
  Answer answer = device_.call({"single_get", 0, {name}});
  return answer.texts.empty() ? std::string() : std::move(answer.texts.front());
}

std::optional<Fault> Probe::bringUp(KnownDevice known) {
  const BroughtUp result = bringUpDevice(device_, std::move(known));
  isUp_ = true;
  if (std::optional<Fault> fault = checkStart(result.restless)) return fault;
  return look();
}

void Probe::bringUpOnly(KnownDevice known) {
  static_cast<void>(bringUpDevice(device_, std::move(known)));
  isUp_ = true;
}

void Probe::replay(const WalkStep& step) {
  if (stage(work_, step).error.empty()) {
    static_cast<void>(device_.call({"commit", work_}));
  } else {
    renew(work_);
  }
}

std::optional<Fault> Probe::commit(const WalkStep& step, const WalkStep* other) {
  if (!stage(work_, step).error.empty()) {
    renew(work_);
    return {};
  }
  const bool hasRange = device_.call({"get_range", work_, {step.name}}).error.empty();
  const Answer before = other != nullptr ? tryAlone(*other) : Answer();
  const Answer tried = device_.call({"try", work_});
  const Answer done = device_.call({"commit", work_});
  ++commits_;
  if (tried.changes != done.changes || tried.error != done.error) {
    return Fault{PROPERTY_TRIAL,
                 step.name,
                 differing(tried.changes, done.changes, step.name),
                 "try says " + shownOrNothing(tried) + ", and commit does " + shownOrNothing(done),
                 {},
                 shown(tried)};
  }
  if (!done.error.empty()) {
    // Before the device is up, what follows may still be empty, and be refused for that.
    if (!hasRange || !isUp_) return {};
    return Fault{PROPERTY_REFUSAL,
                 step.name,
                 refused(done.notes, step.name),
                 "the commit of " + spelledWord(step.name) +
                     (step.isReset() ? "" : "=" + spelledWord(step.value)) + " fails, which " +
                     (step.isReset() ? "reset" : "set") + " has taken: " + done.error,
                 {},
                 joined(done.changes)};
  }
  if (std::optional<Fault> fault = checkRepeat(step, done)) return fault;
  // What was passed over before the device is up was never judged.
  Texts touched;
  if (isUp_) touched.push_back(step.name);
  for (const std::string& change : done.changes) {
    std::string name = changeIn(change).name;
    if (!name.empty() && (!isUp_ || name != step.name)) touched.push_back(std::move(name));
  }
  if (std::optional<Fault> fault = checkLimits(touched)) return fault;
  if (other == nullptr) return {};
  const Answer after = tryAlone(*other);
  if (before.changes == after.changes && before.error == after.error) return {};
  return Fault{PROPERTY_ORDER,
               other->name,
               differing(before.changes, after.changes, other->name),
               spelledWord(other->name) + " does not depend on " + spelledWord(step.name) +
                   ", but its commit does " + shownOrNothing(before) +
                   " before the one of that, and " + shownOrNothing(after) + " after it",
               {},
               shown(before),
               *other};
}

// Each commit of a trigger is announced: that is no change.
std::optional<Fault> Probe::checkRepeat(const WalkStep& step, const Answer& done) {
  static_cast<void>(stage(work_, step));
  const Answer again = device_.call({"commit", work_});
  const Texts changed = those(again.changes, done.changes, false);
  if (changed.empty() && again.error.empty()) return {};
  const std::string name = changed.empty() ? step.name : changeIn(changed.front()).name;
  const std::string what =
      again.error.empty() ? "changes " + joined(changed) : "fails: " + again.error;
  return Fault{PROPERTY_REPEAT,
               name,
               changed.empty() ? refused(again.notes, name) : std::string(baseName(name)),
               "the commit of " + spelledWord(step.name) + " once more " + what,
               {},
               joined(those(again.changes, done.changes, true))};
}

// What instances hold is staged for all of them together. Where each of them keeps it, the
// situation is as it is, and nothing changes. Otherwise each is tried alone.
std::optional<Fault> Probe::checkLimits(const Texts& names) {
  if (names.empty()) return {};
  const Texts values = device_.call({"get_bulk", scratch_, names}).texts;
  if (values.size() != names.size()) return {};  // too many for a reply
  static_cast<void>(device_.call({"set_status_bulk", scratch_, names, values}));
  const Answer tried = device_.call({"try", scratch_});
  renew(scratch_);
  Texts suspects;
  for (const std::string& text : tried.changes) {
    const Change change = changeIn(text);
    const auto place = std::ranges::find(names, change.name);
    const bool isKept =
        change.name.empty() || (place != names.end() &&
                                values[static_cast<size_t>(place - names.begin())] == change.value);
    if (!isKept) suspects.push_back(change.name);
  }
  if (suspects.empty()) return {};
  // What changes may do so only when something else is set.
  suspects.insert(suspects.end(), names.begin(), names.end());
  for (const std::string& name : suspects) {
    if (std::optional<Fault> fault = checkLimit(name)) return fault;
  }
  return {};
}

std::optional<Fault> Probe::checkLimit(const std::string& name) {
  const std::string value = valueOf(name);
  const Answer tried = tryAlone({"set_status", name, value});
  const auto isKept = [&](const Change& change) {
    return change.name.empty() || valueOf(change.name) == change.value;
  };
  for (const std::string& text : tried.changes) {
    const Change change = changeIn(text);
    if (isKept(change)) continue;
    Texts kept;  // of a trigger
    std::ranges::copy_if(tried.changes, std::back_inserter(kept),
                         [&](const std::string& one) { return isKept(changeIn(one)); });
    return Fault{PROPERTY_LIMITS,
                 name,
                 std::string(baseName(change.name)),
                 spelledWord(change.name) + " holds " + spelledWord(valueOf(change.name)) +
                     ", which is not what it may be: it would become " + spelledWord(change.value),
                 value,
                 joined(kept)};
  }
  return {};
}

std::optional<Fault> Probe::look() {
  constexpr size_t TOGETHER = 500;
  Texts existing;
  for (const std::string& name : names_.all()) {
    if (device_.call({"get_range", scratch_, {name}}).error.empty()) existing.push_back(name);
  }
  for (size_t i = 0; i < existing.size(); i += TOGETHER) {
    const size_t count = std::min(TOGETHER, existing.size() - i);
    const auto begin = existing.begin() + static_cast<std::ptrdiff_t>(i);
    const Texts part(begin, begin + static_cast<std::ptrdiff_t>(count));
    if (std::optional<Fault> fault = checkLimits(part)) return fault;
  }
  return {};
}

std::optional<Fault> Probe::checkStart(const std::vector<std::string>& restless) {
  for (const std::string& name : names_.all()) {
    const bool isRestless = std::ranges::find(restless, baseName(name)) != restless.end();
    if (isRestless || !valueOf(name).empty()) continue;
    const Answer tried = tryAlone({"reset_status", name});
    for (const std::string& text : tried.changes) {
      const Change change = changeIn(text);
      if (change.name != name || change.value.empty()) continue;
      return Fault{PROPERTY_START,
                   name,
                   std::string(baseName(name)),
                   spelledWord(name) + " is empty when the device is up, and a reset makes it " +
                       spelledWord(change.value),
                   {},
                   {}};
    }
  }
  return {};
}
