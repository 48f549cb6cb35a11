// Outlook: the situation to which a commit of what a transaction has staged would lead.
//
//   transaction.set("mode", "fast", false);
//   const Outlook outlook(transaction);
//   outlook.of(rate);                // what is seen when rate is judged: mode is "fast"
//
// Where nothing is staged it costs nothing, and is the committed situation.
#pragma once

#include "database/transaction.h"

/// Holds until the transaction changes or a value is stored.
class Outlook {
 public:
  /// Tries the commit of `transaction`, which has to live as long. Counts the work, and raises
  /// WorkExceeded; std::bad_alloc where memory is exhausted.
  explicit Outlook(Transaction& transaction);
  Outlook(const Outlook&) = delete;
  Outlook& operator=(const Outlook&) = delete;

  /// A CommitResult: that of the commit. With COMMIT_TOO_LARGE the outlook is of no use.
  [[nodiscard]] int result() const { return result_; }
  /// What the commit would leave.
  [[nodiscard]] const StagedValues& values() const { return isIdle_ ? staged_ : tried_; }
  /// What a value that is staged for `parm` would be judged with: a commit judges it first, with
  /// the other values as they are staged, where nothing depends on it.
  [[nodiscard]] const StagedValues& of(const ParmEntry& parm) const {
    return isIdle_ || parm.hasDependents() ? values() : first_;
  }

 private:
  StagedValues& staged_;
  StagedValues first_;  // with the defaults in place of the resets
  StagedValues tried_;
  bool isIdle_;
  int result_ = 0;
};
