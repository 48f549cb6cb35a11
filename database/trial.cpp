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
  const bool wasAnnounced = entry.held != nullptr && entry.held->announced;
  const std::string& value = entry.value.text();
  std::string name = fullName(entry);
  if (reported.contains(name) ||
      isReported(entry.parm->parm, wasAnnounced, value, committedText(entry))) {
    reported.insert_or_assign(std::move(name), value);
  }
}

// Returns 0, WALK_AGAIN, or a refusal.
int tryEntry(StagedEntry& entry, IndexSituations& situations, Reported& reported) {
  const SetCode code = evaluate(entry, situations, true);
  if (code == SET_STORED) addReported(entry, reported);
  return stepResult(code);
}

}  // namespace

int tryCommit(Transaction& transaction, std::vector<TriedChange>& changes) {
  const LogRedirection silence([](const std::string& /*line*/) {});
  StagedValues copies(&transaction.staged());
  copyStaged(transaction.staged(), copies);
  resolveResets(copies);
  const std::optional<Plan> plan = planCommit(transaction.database(), copies);
  if (!plan) return COMMIT_TOO_LARGE;
  Reported reported;
  const int result =
      walkCommit(*plan, copies, [&](StagedEntry& entry, IndexSituations& situations) {
        return tryEntry(entry, situations, reported);
      });
  for (auto& [name, value] : reported) changes.push_back({name, std::move(value)});
  return result;
}
