// Preview: what a commit would change, because of what, and what it would refuse.
#pragma once

#include <string>
#include <vector>

#include "database/transaction.h"

/// A value that a commit would report.
struct PreviewedChange {
  std::string name;  ///< the full name
  std::string before;
  std::string after;
  /// The changed instances that it reads, ascending, after itself where what was staged is stored.
  std::vector<std::string> because;
};

/// A staged value that a commit would not store, or a follower's that makes it fail.
struct PreviewedRefusal {
  std::string name;  ///< the full name
  std::string why;   ///< in words, with the line and the statement where one decides
};

/// Both ascend by name.
struct Preview {
  std::vector<PreviewedChange> changes;
  std::vector<PreviewedRefusal> refusals;
};

/// Goes through the commit of what `transaction` has staged and stores nothing; see tryCommit(),
/// whose result it returns.
int preview(Transaction& transaction, Preview& out);
