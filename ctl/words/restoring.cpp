#include "ctl/words/restoring.h"

#include <algorithm>
#include <iterator>
#include <nlohmann/json.hpp>
#include <set>

#include "ctl/service/bulk.h"
#include "ctl/service/exit_status.h"
#include "ctl/service/operator_messages.h"
#include "ctl/text/assignment.h"
#include "ctl/text/quoted.h"
#include "ctl/text/range_text.h"
#include "ctl/text/sentences.h"
#include "ctl/text/suggestion.h"
#include "ctl/words/asked.h"
#include "ctl/words/candidates.h"

namespace {

// After that many rounds, values are taken to be ones that never agree.
constexpr size_t MOST_ROUNDS = 10;

// Those of the values that exist and are not stored already.
std::vector<Assignment> missing(Service& service, const std::vector<Assignment>& wanted) {
  if (wanted.empty()) return {};
  const std::vector<InstanceState> states = service.states(COMMITTED, namesOf(wanted));
  std::vector<Assignment> all;
  for (size_t i = 0; i < wanted.size(); ++i) {
    if (states[i].is(STATE_EXISTS) && states[i].value != wanted[i].value) all.push_back(wanted[i]);
  }
  return all;
}

// One round through the levels; returns what was refused.
std::vector<Refusal> restoreOnce(Service& service, uint32_t transaction,
                                 const std::map<uint32_t, std::vector<Assignment>>& wanted,
                                 bool isStatus) {
  std::vector<Refusal> refused;
  for (const auto& [level, assignments] : wanted) {
    const std::vector<Assignment> left = missing(service, assignments);
    if (left.empty()) continue;
    for (Refusal& refusal : commitLevel(service, transaction, left, isStatus)) {
      refused.push_back(std::move(refusal));
    }
  }
  return refused;
}

Names valuesOf(Service& service, const std::vector<Assignment>& wanted) {
  Names values;
  for (InstanceState& state : service.states(COMMITTED, namesOf(wanted))) {
    values.push_back(std::move(state.value));
  }
  return values;
}

// Goes through the levels until that changes no more; returns what was refused in the end.
std::vector<Refusal> restoreUntilAtRest(Service& service, const Levels& levels,
                                        const std::vector<Assignment>& wanted, bool isStatus) {
  const auto byLevel = levels.sorted(wanted);
  std::vector<Refusal> refused;
  Names before;
  for (size_t round = 0; round < MOST_ROUNDS; ++round) {
    const OwnTransaction transaction(service);
    refused = restoreOnce(service, transaction.id(), byLevel, isStatus);
    Names after = valuesOf(service, wanted);
    if (after == before) break;
    before = std::move(after);
  }
  return refused;
}

// Those of the values that can be set now, and no more once all of them are stored.
Names lockedByOthers(Service& service, const std::vector<Assignment>& left) {
  Names locked;
  if (left.empty()) return locked;
  const OwnTransaction trial(service);
  stageTaken(service, trial.id(), left, false);
  const std::vector<InstanceState> now = service.states(COMMITTED, namesOf(left));
  const auto then = service.tryStates(trial.id(), namesOf(left));
  if (!then) return locked;
  for (size_t i = 0; i < left.size(); ++i) {
    if (wouldBeLocked(now[i], (*then)[i])) locked.push_back(left[i].name);
  }
  return locked;
}

std::set<std::string> basesOf(const Names& names) {
  std::set<std::string> bases;
  for (const std::string& name : names) bases.emplace(baseOf(name));
  return bases;
}

// The base names of those of the values that the locks of these instances read.
std::set<std::string> lockingBases(Service& service, const std::vector<Assignment>& left,
                                   const Names& locked) {
  const std::set<std::string> bases = basesOf(locked);
  std::set<std::string> locks;
  for (const Definition& definition : service.definitions({bases.begin(), bases.end()})) {
    std::ranges::copy_if(
        definition.statements, std::inserter(locks, locks.end()),
        [](const std::string& statement) { return statement.starts_with("ctrl"); });
  }
  std::set<std::string> locking = basesOf(namesOf(left));
  std::erase_if(locking, [&](const std::string& base) {
    return std::ranges::none_of(locks, [&](const auto& lock) { return mentions(lock, base); });
  });
  return locking;
}

// Stores what others of the values will lock; those others are left for later. What is locked may
// itself lock.
void restoreBeforeLocks(Service& service, const Levels& levels,
                        const std::vector<Assignment>& wanted) {
  Names before;
  for (size_t round = 0; round < MOST_ROUNDS; ++round) {
    const std::vector<Assignment> left = missing(service, wanted);
    const Names locked = lockedByOthers(service, left);
    if (locked.empty() || locked == before) return;
    before = locked;
    const std::set<std::string> locking = lockingBases(service, left, locked);
    std::vector<Assignment> first = left;
    std::erase_if(first, [&](const Assignment& each) {
      return locking.contains(std::string(baseOf(each.name)));
    });
    static_cast<void>(restoreUntilAtRest(service, levels, first, false));
  }
}

// Those that the definition has turned into what is stored are not cut.
void forgiveTranslated(Client& client, Restored& restored) {
  std::vector<Assignment> wanted;
  for (const CutValue& each : restored.cut) wanted.push_back(each.wanted);
  if (wanted.empty()) return;
  const std::vector<std::string> translated = translatedValues(client, wanted);
  std::vector<CutValue> cut;
  for (size_t i = 0; i < wanted.size(); ++i) {
    if (isSameValue(translated[i], restored.cut[i].stored.value)) {
      ++restored.count;
    } else {
      cut.push_back(std::move(restored.cut[i]));
    }
  }
  restored.cut = std::move(cut);
}

Json jsonOf(const Restored& restored, const std::string& verb) {
  Json json = {{verb, restored.count},
               {"cut", Json::array()},
               {"refused", Json::array()},
               {"absent", restored.absent},
               {"unknown", restored.unknown}};
  for (const CutValue& cut : restored.cut) {
    json["cut"].push_back({{"name", cut.wanted.name},
                           {"asked", cut.wanted.value},
                           {"value", cut.stored.value},
                           {"range", rangeJson(cut.stored)}});
  }
  for (const Refusal& refusal : restored.refused) {
    json["refused"].push_back({{"name", refusal.name}, {"why", refusal.why}});
  }
  return json;
}

void tellCut(Client& client, const Restored& restored) {
  Names names;
  for (const CutValue& cut : restored.cut) names.push_back(cut.wanted.name);
  if (names.empty()) return;
  const auto reasons = client.service.explain(COMMITTED, names);
  for (size_t i = 0; i < names.size(); ++i) {
    const CutValue& cut = restored.cut[i];
    const std::string why = cutText(cut.wanted.value, cut.wanted.value, cut.stored, reasons[i]);
    client.out.line(client.out.style().name(quotedWord(names[i])) + " = " +
                    quotedWord(cut.stored.value) + " " + client.out.style().note("(" + why + ")"));
  }
}

void tellUnknown(Client& client, const Names& names, std::optional<uint32_t> transaction) {
  if (names.empty()) return;
  const std::vector<ListedParameter> listed = client.service.list("");
  for (const std::string& name : names) {
    tellOperator(VALUE_UNKNOWN, unknownNameText(name, listed),
                 {.parameter = name, .transaction = transaction});
  }
}

}  // namespace

std::vector<Refusal> refusedTogether(Service& service, const std::vector<Assignment>& assignments,
                                     bool isStatus) {
  const OwnTransaction trial(service);
  std::vector<Refusal> refused = stageValues(service, trial.id(), assignments, isStatus);
  std::ranges::move(service.preview(trial.id()).refused, std::back_inserter(refused));
  return refused;
}

std::vector<Refusal> commitLevel(Service& service, uint32_t transaction,
                                 const std::vector<Assignment>& assignments, bool isStatus) {
  if (commitValues(service, transaction, assignments, isStatus).isDone()) return {};
  // One that is refused keeps others of its level from being stored: they are committed without it.
  std::vector<Refusal> refused = refusedTogether(service, assignments, isStatus);
  std::vector<Assignment> left = assignments;
  removeRefused(left, refused);
  if (!left.empty()) static_cast<void>(commitValues(service, transaction, left, isStatus));
  // What was only behind another refusal is accepted by itself.
  std::erase_if(refused, [&](const Refusal& refusal) {
    const auto each = std::ranges::find(assignments, refusal.name, &Assignment::name);
    return each == assignments.end() ||
           commitValues(service, transaction, {*each}, isStatus).isDone();
  });
  return refused;
}

Restored restoreByLevels(Service& service, const Levels& levels,
                         const std::vector<Assignment>& wanted, bool isStatus) {
  const std::vector<Assignment> known = levels.known(wanted);
  if (!isStatus) restoreBeforeLocks(service, levels, known);
  const std::vector<Refusal> refused = restoreUntilAtRest(service, levels, known, isStatus);
  return restoredOf(service, levels, wanted, refused, isStatus);
}

Restored restoredOf(Service& service, const Levels& levels, const std::vector<Assignment>& wanted,
                    const std::vector<Refusal>& refused, bool isStatus) {
  Restored restored;
  restored.refused = refused;
  std::set<std::string_view> refusedNames;
  for (const Refusal& refusal : refused) refusedNames.insert(refusal.name);
  const std::vector<InstanceState> states = service.states(COMMITTED, namesOf(wanted));
  for (size_t i = 0; i < wanted.size(); ++i) {
    const std::string& name = wanted[i].name;
    if (!levels.has(name) || !states[i].is(STATE_KNOWN)) {
      restored.unknown.push_back(name);
    } else if (!states[i].is(STATE_EXISTS)) {
      restored.absent.push_back(name);
      std::erase_if(restored.refused, [&](const Refusal& each) { return each.name == name; });
    } else if (isSameValue(states[i].value, wanted[i].value)) {
      ++restored.count;
    } else if (refusedNames.contains(name)) {
      Refusal& refusal = *std::ranges::find(restored.refused, name, &Refusal::name);
      refusal.why = refusalText(states[i], wanted[i].value, refusal.why);
    } else if (!isStatus && !states[i].is(STATE_WRITABLE)) {
      restored.refused.push_back({name, "it is not writable"});
    } else {
      restored.cut.push_back({wanted[i], states[i]});
    }
  }
  return restored;
}

int tellRestored(Client& client, const Restored& restored, const std::string& verb, bool isStrict,
                 std::optional<uint32_t> transaction) {
  Restored told = restored;
  forgiveTranslated(client, told);
  if (client.out.isJson()) {
    client.out.json(jsonOf(told, verb));
  } else {
    tellCut(client, told);
    client.out.line(verb + " " + std::to_string(told.count) + " of " +
                    std::to_string(told.count + told.cut.size() + told.refused.size() +
                                   told.absent.size() + told.unknown.size()));
  }
  for (const Refusal& refusal : told.refused) {
    tellOperator(VALUE_REFUSED, quotedWord(refusal.name) + ": " + refusal.why,
                 {.parameter = refusal.name, .transaction = transaction});
  }
  for (const std::string& name : told.absent) {
    tellOperator(VALUE_ABSENT, quotedWord(name) + " does not exist now",
                 {.parameter = name, .transaction = transaction});
  }
  tellUnknown(client, told.unknown, transaction);
  if (!told.unknown.empty()) return STATUS_UNKNOWN;
  if (!told.refused.empty() || !told.absent.empty()) return STATUS_REFUSED;
  return isStrict && !told.cut.empty() ? STATUS_CUT : STATUS_DONE;
}

bool wouldBeLocked(const InstanceState& now, const InstanceState& then) {
  return now.is(STATE_WRITABLE) && then.is(STATE_EXISTS) && !then.is(STATE_WRITABLE);
}

std::string refusalText(const InstanceState& state, const std::string& value,
                        const std::string& why) {
  if (!state.is(STATE_LIMITED) || isAllowed(state, value)) return why;
  return "it takes " + rangeText(state) + ", not " + quotedWord(value);
}

int tellReady(Client& client, int status) {
  const std::optional<std::string> error = client.service.setReady();
  if (!error) return status;
  tellOperator(NOT_SAID_READY, *error);
  return status == STATUS_DONE ? STATUS_REFUSED : status;
}
