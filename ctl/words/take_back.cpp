#include "ctl/words/take_back.h"

#include <unistd.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <set>

#include "ctl/service/exit_status.h"
#include "ctl/text/assignment.h"
#include "ctl/text/quoted.h"
#include "ctl/words/restoring.h"
#include "ctl/words/waiting_commits.h"

namespace {

struct OldValues {
  std::vector<Assignment> settable;
  Names none;  // of those that had no value, and take none
};

// Of what nobody has changed again.
OldValues oldValues(Client& client, Confirmation& confirmation,
                    const std::vector<Change>& changes) {
  Names names;
  for (const Change& change : changes) names.push_back(change.name);
  const std::vector<InstanceState> states = client.service.states(COMMITTED, names);
  confirmation.takeSignals();
  OldValues old;
  for (size_t i = 0; i < changes.size(); ++i) {
    const auto& [name, before, after, because] = changes[i];
    if (before == after) continue;
    const PastCommit* const later = confirmation.laterCommit(name);
    if (later == nullptr || isSameValue(states[i].value, after)) {
      if (before.empty() && states[i].is(STATE_LIMITED)) {
        old.none.push_back(name);
      } else {
        old.settable.push_back({name, before});
      }
    } else if (!isSameValue(states[i].value, before)) {
      complain(quotedWord(name) + " stays " + quotedWord(states[i].value) + ": " + later->caller +
               " has set it since, in commit " + std::to_string(later->serial));
    }
  }
  return old;
}

// What had no value is back where it does not exist any more. What still has one keeps it.
void complainOfKept(Client& client, const Names& names) {
  if (names.empty()) return;
  for (const InstanceState& state : client.service.states(COMMITTED, names)) {
    if (!state.is(STATE_EXISTS) || state.value.empty()) continue;
    complain(quotedWord(state.name) + " stays " + quotedWord(state.value) +
             ": it had no value before");
  }
}

// What cannot be set any more once the rest is back gets its old value before that.
void takeBackLocked(Service& service, const std::vector<Assignment>& old, bool isStatus) {
  std::set<std::string> refused;
  for (const Refusal& each : refusedTogether(service, old, isStatus)) refused.insert(each.name);
  std::vector<Assignment> locked = old;
  std::erase_if(locked, [&](const Assignment& each) { return !refused.contains(each.name); });
  if (locked.empty()) return;
  const OwnTransaction transaction(service);
  // What is refused now, too, is told in the end.
  static_cast<void>(commitLevel(service, transaction.id(), locked, isStatus));
}

void takeBack(Client& client, Confirmation& confirmation, const std::vector<Change>& changes,
              bool isStatus) {
  const OldValues old = oldValues(client, confirmation, changes);
  const Levels levels(client.service);
  takeBackLocked(client.service, old.settable, isStatus);
  const Restored restored = restoreByLevels(client.service, levels, old.settable, isStatus);
  static_cast<void>(tellRestored(client, restored, "restored", false));
  complainOfKept(client, old.none);
}

void tellConfirmed(const Output& out) {
  if (out.isJson()) {
    out.json({{"confirmed", true}});
  } else {
    out.line("confirmed");
  }
}

const char* reasonOf(Decision decision) {
  return decision == DECISION_LATE ? "not confirmed in time" : "interrupted";
}

}  // namespace

int awaitConfirmation(Client& client, Confirmation& confirmation, const std::string& what,
                      int seconds, bool isStatus, int confirmed) {
  // Taking it back is a change by this client, too.
  const std::vector<Change> changes = confirmation.changes();
  WaitingMark mark(client.service, what);
  const bool hasTerminal = isatty(STDIN_FILENO) == 1;
  complain("this is taken back in " + std::to_string(seconds) +
           " s, unless it is confirmed: " + (hasTerminal ? "press Enter, or elsewhere: " : "") +
           client.program + " confirm " + std::to_string(getpid()));
  std::fflush(stdout);
  const Decision decision = confirmation.wait(seconds);
  switch (decision) {
    case DECISION_CONFIRMED:
      mark.decide(true);
      tellConfirmed(client.out);
      return confirmed;
    case DECISION_NO_SERVICE:
      complain("the service has gone, and what was set with it: there is nothing to take back");
      return STATUS_NO_SERVICE;
    case DECISION_NO_BUS:
      complain("the bus has gone: nothing can be taken back");
      return STATUS_NO_SERVICE;
    case DECISION_LATE:
    case DECISION_INTERRUPTED:
      break;
  }
  mark.decide(false);
  complain(reasonOf(decision));
  takeBack(client, confirmation, changes, isStatus);
  return STATUS_REFUSED;
}
