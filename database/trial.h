// Trial: what a commit would do, without doing it.
//
//   transaction.set("mode", "slow", false);
//   std::vector<TriedChange> changes;
//   tryCommit(transaction, changes);  // COMMIT_DONE; changes are mode with "slow", rate with "10"
//   tryCommit(transaction, changes);  // the same once more: nothing was stored
#pragma once

#include <string>
#include <vector>

#include "database/commit.h"

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
