// Instance state: all that a client wants to know of an instance at once, as a transaction sees it.
#pragma once

#include <string>
#include <string_view>

#include "base/system_log.h"
#include "database/index_situations.h"
#include "database/outlook.h"
#include "sw/parm/bounds.h"

/// Whether the instance `indices` of `parm` exists in the situation that `situations` reads: it is
/// available, has as many index values as indices, and each index is available and takes its value.
/// Counts the work.
bool existsIn(const ParmEntry& parm, const IndexTuple& indices, IndexSituations& situations);

/// What an instance is. Of parameters that follow each other, exists and isWritable are as they are
/// after the commit of what is staged, not as they would be on the way through the ring.
struct InstanceState {
  bool isKnown = false;  ///< there is such a parameter; else nothing below counts
  bool exists = false;   ///< it is there after a commit of the transaction
  /// There is a value that the commit would store where it is set without force. Of a parameter
  /// without dependents it is judged with the values as they are staged, see Outlook::of(): so one
  /// that the commit itself brings about may not be writable yet.
  bool isWritable = false;
  bool isStaged = false;               ///< the transaction has staged something for it
  bool hasValue = false;               ///< `value` is not empty
  const std::string* value = nullptr;  ///< that the transaction sees; as Transaction::find() has it
  int rangeResult = 0;                 ///< of queryRange()
  BoundsParm range;                    ///< of queryRange()
};

/// Answers for many instances of one transaction, which stays as it is meanwhile. As long as it
/// lives the system log gets nothing.
class InstanceStates {
 public:
  /// Tries the commit of `transaction`, see Outlook.
  explicit InstanceStates(Transaction& transaction);
  InstanceStates(const InstanceStates&) = delete;
  InstanceStates& operator=(const InstanceStates&) = delete;

  [[nodiscard]] const Outlook& outlook() const { return outlook_; }
  /// The state of the instance `name`. Counts the work, and raises WorkExceeded, or std::bad_alloc
  /// where memory is exhausted.
  [[nodiscard]] InstanceState of(std::string_view name);

 private:
  const LogRedirection silence_;
  Transaction& transaction_;
  Outlook outlook_;
  IndexSituations settled_;  // of what the commit would leave
};
