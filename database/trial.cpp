#include "database/trial.h"

#include <map>
#include <optional>
#include <utility>

#include "base/system_log.h"
#include "database/commit_steps.h"

namespace {

// What the commit would report, by name. An entry that is walked once more may take another value.
using Reported = std::map<std::string, std::string>;

// Adds what an entry has just taken, where clients would be told of it.
void addReported(const StagedEntry& entry, Reported& reported) {
  const std::string& value = entry.value.text();
  std::string name = fullName(entry);
  if (reported.contains(name) ||
      isReported(entry.parm->parm, wasAnnounced(entry), value, committedText(entry))) {
    reported.insert_or_assign(std::move(name), value);
  }
}

}  // namespace

int tryCommit(Transaction& transaction, StagedValues& copies, const TriedEntry& note) {
  const LogRedirection silence([](const std::string& /*line*/) {});
  copyStaged(transaction.staged(), copies);
  resolveResets(copies);
  const std::optional<Plan> plan = planCommit(transaction.database(), copies);
  if (!plan) return COMMIT_TOO_LARGE;
  return walkCommit(
      *plan, copies,
      [&](StagedEntry& entry, IndexSituations& situations) {
        const SetCode code = evaluate(entry, situations, true);
        note(entry, code);
        return stepResult(code);
      },
      [&](const StagedEntry& behind) { note(behind, std::nullopt); });
}

int tryCommit(Transaction& transaction, std::vector<TriedChange>& changes) {
  StagedValues copies(&transaction.staged());
  Reported reported;
  const int result =
      tryCommit(transaction, copies, [&](const StagedEntry& entry, std::optional<SetCode> code) {
        if (code == SET_STORED) addReported(entry, reported);
      });
  for (auto& [name, value] : reported) changes.push_back({name, std::move(value)});
  return result;
}
