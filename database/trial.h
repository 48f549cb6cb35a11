// Trial: what a commit would do, without doing it.
//
//   transaction.set("mode", "slow", false);
//   std::vector<TriedChange> changes;
//   tryCommit(transaction, changes);  // COMMIT_DONE; changes are mode with "slow", rate with "10"
//   tryCommit(transaction, changes);  // the same once more: nothing was stored
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "database/commit.h"
#include "sw/parm/set_value.h"

/// A value that a commit would report.
struct TriedChange {
  std::string name;   ///< the full name
  std::string value;  ///< as the commit would leave it
  bool operator==(const TriedChange& other) const = default;
};

/// Goes through the commit of what `transaction` has staged, by the same plan and the same judging,
/// and stores nothing: neither committed nor staged values change, and the system log gets no line.
/// `changes` receives what that commit would report, ascending by name. Returns the CommitResult
/// that it would. It costs what the commit costs, and a copy of what is staged; it counts the work,
/// and raises WorkExceeded, or std::bad_alloc where memory is exhausted.
int tryCommit(Transaction& transaction, std::vector<TriedChange>& changes);

/// Gets each entry that a trial has gone through, in the order of the commit, with what became of
/// it; nullopt where it is behind a refusal in its level, and as if it had not been staged. An
/// entry may come twice, and holds what the instance would hold then.
using TriedEntry = std::function<void(const StagedEntry& entry, std::optional<SetCode> code)>;

/// The same, for whoever asks more: `copies`, which is empty and on top of what is staged, holds
/// afterwards what the commit would leave.
int tryCommit(Transaction& transaction, StagedValues& copies, const TriedEntry& note);
