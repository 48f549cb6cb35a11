// undo: takes back what a commit has changed, by an ordinary commit.
#include <algorithm>
#include <limits>
#include <memory>
#include <nlohmann/json.hpp>

#include "ctl/service/exit_status.h"
#include "ctl/text/assignment.h"
#include "ctl/text/quoted.h"
#include "ctl/words/arguments.h"
#include "ctl/words/asked.h"
#include "ctl/words/commit_and_tell.h"
#include "ctl/words/commits.h"
#include "ctl/words/word.h"

namespace {

struct UndoArguments {
  uint32_t serial = 0;
  bool isDry = false;
  bool isForced = false;
};

PastCommit findCommit(Client& client, uint32_t serial) {
  std::vector<PastCommit> commits = client.service.history(0);
  const auto found = std::ranges::find(commits, serial, &PastCommit::serial);
  if (found != commits.end()) return std::move(*found);
  const std::string kept = commits.empty()
                               ? ": none is kept"
                               : ": kept are " + std::to_string(commits.front().serial) + " to " +
                                     std::to_string(commits.back().serial);
  endWith(STATUS_UNKNOWN, "no commit " + std::to_string(serial) + kept);
}

// What is left to be taken back: what a client can set, and had a value before.
struct Reversal {
  std::vector<Change> own;        // from the values of now
  std::vector<Change> overtaken;  // that later commits have changed again; with the value of now
};

Reversal reversalOf(Client& client, const PastCommit& commit) {
  Names names;
  for (const Change& change : commit.changes) names.push_back(change.name);
  const std::vector<InstanceState> states = client.service.states(COMMITTED, names);
  Reversal reversal;
  for (size_t i = 0; i < names.size(); ++i) {
    const Change& change = commit.changes[i];
    if (change.before == change.after || change.before.empty()) continue;
    if (states[i].value != change.after) {
      reversal.overtaken.push_back({change.name, change.after, states[i].value});
    }
    reversal.own.push_back({change.name, states[i].value, change.before});
  }
  return reversal;
}

// Takes out what cannot be set once the rest is taken back, and returns why. What follows others
// comes back by itself.
std::vector<Refusal> takeOutRefused(Client& client, std::vector<Assignment>& assignments) {
  const OwnTransaction trial(client.service);
  std::vector<Refusal> refused = client.service.set(trial.id(), assignments, false);
  removeRefused(assignments, refused);
  std::vector<Refusal> later = client.service.preview(trial.id()).refused;
  removeRefused(assignments, later);
  std::ranges::move(later, std::back_inserter(refused));
  return refused;
}

// Says what is refused and does not come back by itself either; returns the exit status.
int complainOfStaying(const Reversal& reversal, const std::vector<Refusal>& refused,
                      const std::vector<Change>& changes) {
  int status = STATUS_DONE;
  for (const Refusal& refusal : refused) {
    const Change& own = *std::ranges::find(reversal.own, refusal.name, &Change::name);
    const auto change = std::ranges::find(changes, refusal.name, &Change::name);
    const std::string& after = change == changes.end() ? own.before : change->after;
    if (isSameValue(after, own.after)) continue;
    complain(quotedWord(own.name) + " stays " + quotedWord(after) + ": " +
             refusalSentence(refusal.why));
    status = STATUS_REFUSED;
  }
  return status;
}

void show(const Output& out, const Preview& preview, bool isDry) {
  Json json = Json::array();
  for (const Change& change : preview.changes) {
    if (change.before == change.after) continue;
    json.push_back(changeJson(change));
    if (!out.isJson()) out.line(changeLine(out.style(), change));
  }
  if (out.isJson() && isDry) out.json(json);
}

int complainOfOvertaken(const std::vector<Change>& overtaken) {
  for (const Change& change : overtaken) {
    complain(quotedWord(change.name) + " is " + quotedWord(change.after) + " by now, not " +
             quotedWord(change.before));
  }
  complain("nothing is taken back; --force does it all the same");
  return STATUS_REFUSED;
}

// Says that a commit stays, as it has changed only what was empty or what comes back by itself.
void tellNothing(const Output& out, bool isDry) {
  if (out.isJson()) {
    out.json(isDry ? Json::array() : Json{{"stored", Json::array()}, {"followed", Json::array()}});
  } else {
    out.line("nothing to take back");
  }
}

int undo(Client& client, const UndoArguments& arguments) {
  const PastCommit commit = findCommit(client, arguments.serial);
  const Reversal reversal = reversalOf(client, commit);
  if (!reversal.overtaken.empty() && !arguments.isForced) {
    return complainOfOvertaken(reversal.overtaken);
  }
  std::vector<Assignment> assignments;
  for (const Change& change : reversal.own) assignments.push_back({change.name, change.after});
  const std::vector<Refusal> refused = takeOutRefused(client, assignments);
  if (assignments.empty()) {
    tellNothing(client.out, arguments.isDry);
    return complainOfStaying(reversal, refused, {});
  }
  const OwnTransaction transaction(client.service);
  stage(client, transaction.id(), assignments);
  const Preview preview = client.service.preview(transaction.id());
  show(client.out, preview, arguments.isDry);
  const int left = complainOfStaying(reversal, refused, preview.changes);
  if (arguments.isDry) return left;
  const int status =
      commitAndTell(client, transaction.id(), wantedOf(assignments), {.onlyCut = true});
  return status == STATUS_DONE ? left : status;
}

}  // namespace

RunWord defineUndo(CLI::App& word) {
  const auto arguments = std::make_shared<UndoArguments>();
  word.add_option("SERIAL", arguments->serial, "Of the commit, as in ostrelctl log")
      ->check(wholeNumber(0, std::numeric_limits<uint32_t>::max()))
      ->required()
      ->type_name("");
  word.add_flag("-n,--dry-run", arguments->isDry, "Only show what would change");
  word.add_flag("--force", arguments->isForced, "Also what later commits have changed again");
  return [arguments](Client& client) { return undo(client, *arguments); };
}
