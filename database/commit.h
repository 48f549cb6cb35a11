// Commit: staged values become committed ones, and everything that depends on them follows.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "database/transaction.h"

/// Results of commit.
enum CommitResult : int {
  COMMIT_DONE = 0,
  COMMIT_INVALID_VALUE = -2,  ///< a correction gave no value, or the base bounds refused a value
  COMMIT_INVALID_INDEX = -3,  ///< an instance that a client staged does not exist
  COMMIT_TOO_LARGE = -4,  ///< more depends on what is staged than a commit takes; nothing changed
};

/// A value to report.
struct Change {
  std::string name;  ///< the full name
  const CommittedValue* held = nullptr;
  std::string before = {};  ///< what it held before the commit
  uint32_t number = 0;      ///< ascends in the order in which the values were stored
  const ParmEntry* parm = nullptr;
  bool operator==(const Change& other) const { return name == other.name; }
};

/// What has to be there for each change before its value is kept.
class ChangeRoom {
 public:
  ChangeRoom() = default;
  virtual ~ChangeRoom() = default;
  ChangeRoom(const ChangeRoom&) = delete;
  ChangeRoom& operator=(const ChangeRoom&) = delete;
  /// Makes room for one more change, whose value is stored already. Returns whether there is any.
  [[nodiscard]] virtual bool makeRoom(const Change& change) = 0;
};

/// Applies the staged values and re-evaluates every instance of every parameter that depends on
/// them, level by level. `changes` receives what to report, ascending by name: the values that
/// changed or that are reported for the first time, and every write-only one. Values are stored as
/// they are accepted; a failure ends its level, the later levels are still applied. The transaction
/// is empty afterwards. Returns a CommitResult, the first failure; a write that the parameter
/// does not allow just now is no failure and changes nothing. Where memory is exhausted in between,
/// or there is no `room` for a change, std::bad_alloc is raised and `changes` has what was stored
/// until then; without `room` there is room for all. `unreported` receives the "rostrict"
/// parameters whose values have changed, also more than once.
int commit(Transaction& transaction, std::vector<Change>& changes, ChangeRoom* room = nullptr,
           std::vector<ParmEntry*>* unreported = nullptr);
