// Commit: staged values become committed ones, and everything that depends on them follows.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
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
  const ParmEntry* parm = nullptr;
  size_t before = 0;  ///< where a CommitRecord has what the instance held before the commit
  bool operator==(const Change& other) const { return name == other.name; }
};

/// To be called for each of `changes` in their order by who looks at all their values: has the
/// processor fetch one that comes soon. The values stand in the order of the instances, and that of
/// the names is another: the history of 10,000 instances takes half the time so.
inline void fetchAhead(const std::vector<Change>& changes, const Change& change) {
  constexpr std::ptrdiff_t AHEAD = 12;
  if (&changes.back() - &change >= AHEAD) __builtin_prefetch((&change + AHEAD)->held);
}

/// What a commit notes beside its changes, for whoever tells others of them.
///
/// The values from before the commit stand one behind the other in one text, so that the changes,
/// which are sorted, stay small.
class CommitRecord {
 public:
  /// Makes room for add() of `before`. Raises std::bad_alloc.
  void makeRoom(const std::string& before) {
    const size_t needed = before_.size() + before.size() + 1;
    if (needed > before_.capacity()) before_.reserve(2 * needed);
  }
  /// Makes room for one addUnreported(). Raises std::bad_alloc.
  void makeRoomForUnreported();
  /// Notes what an instance held before the commit, for which there is room. Returns its place.
  size_t add(const std::string& before) noexcept {
    const size_t place = before_.size();
    before_.append(before.c_str(), before.size() + 1);
    return place;
  }
  /// Notes a "rostrict" parameter, whose value has changed; there is room for it.
  void addUnreported(ParmEntry& parm) noexcept { unreported_.push_back(&parm); }
  /// What the instance held before the commit, and a NUL behind it; valid as long as the record is
  /// not changed.
  [[nodiscard]] std::string_view before(const Change& change) const {
    return before_.c_str() + change.before;
  }
  /// The length of all values from before the commit, and a NUL behind each.
  [[nodiscard]] size_t beforeBytes() const { return before_.size(); }
  /// The "rostrict" parameters whose values have changed, also more than once.
  [[nodiscard]] const std::vector<ParmEntry*>& unreported() const { return unreported_; }

 private:
  std::string before_;  // a NUL behind each value
  std::vector<ParmEntry*> unreported_;
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
/// until then; without `room` there is room for all. `record`, which is empty, receives what it is
/// for.
int commit(Transaction& transaction, std::vector<Change>& changes, ChangeRoom* room = nullptr,
           CommitRecord* record = nullptr);
