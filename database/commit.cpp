#include "database/commit.h"

#include <algorithm>
#include <new>
#include <optional>
#include <utility>

#include "base/system_log.h"
#include "database/commit_steps.h"
#include "database/name_order.h"

namespace {

void logRefusal(const StagedEntry& entry, const std::string& value, int result) {
  logError("commit: ERROR \"" + fullName(entry) + "\"=\"" + value +
           "\": ret=" + std::to_string(result));
}

// What the instance holds, as it is put back.
ValueText committedValue(const StagedEntry& entry) {
  const ParmDef& parm = entry.parm->parm;
  const CommittedValue* held = entry.held != nullptr ? entry.held : parm.committed(entry.indices);
  return held != nullptr ? held->value : ValueText();
}

// What a commit has changed, in the order in which it was stored.
class Report {
 public:
  Report(std::vector<Change>& changes, ChangeRoom* room, CommitRecord* record)
      : changes_(changes), room_(room), record_(record) {}
  // Makes room for the record of an entry that is about to be stored and holds `before`.
  void prepare(const StagedEntry& entry, const std::string& before) {
    if (record_ == nullptr) return;
    record_->makeRoom(before);
    if (entry.parm->parm.mode() == MODE_ROSTRICT) record_->makeRoomForUnreported();
  }
  // Adds the parameter of an entry that has changed and is not reported.
  void addUnreported(const StagedEntry& entry) {
    if (record_ != nullptr) record_->addUnreported(*entry.parm);
  }
  // Adds a value that was just stored; where there is no room for it, the instance takes back the
  // one `before`, which takes no memory.
  void add(const StagedEntry& entry, std::string name, ValueText before) {
    CommittedValue& held = *entry.held;
    Change change{std::move(name), &held, entry.parm};
    if (room_ != nullptr && !room_->makeRoom(change)) {
      held.value = std::move(before);
      throw std::bad_alloc();
    }
    held.announced = true;
    if (record_ != nullptr) change.before = record_->add(before.text());
    changes_.push_back(std::move(change));
  }

 private:
  std::vector<Change>& changes_;
  ChangeRoom* room_;
  CommitRecord* record_;
};

// Commits one entry. Returns 0, WALK_AGAIN, or a refusal, which is logged with the value as it was
// staged.
int commitEntry(StagedEntry& entry, IndexSituations& situations, Report& report) {
  // All that is needed to report the value is there before it is stored: where memory is exhausted,
  // nothing is stored that is not reported.
  std::string name = fullName(entry);
  ValueText before = committedValue(entry);
  const std::string wanted = entry.value.text();
  report.prepare(entry, before.text());
  const SetCode code = evaluate(entry, situations, false);
  if (code == SET_STORED_UNREPORTED && entry.held->value.text() != before.text()) {
    report.addUnreported(entry);
  }
  if (code == SET_STORED && isReported(entry.parm->parm, entry.held->announced,
                                       entry.held->value.text(), before.text())) {
    report.add(entry, std::move(name), std::move(before));
  }
  const int result = stepResult(code);
  if (result != 0 && result != WALK_AGAIN) logRefusal(entry, wanted, result);
  return result;
}

// Leaves each name once, ascending, however a commit ends. An instance that was reported twice
// holds one value, and what it held before is told by the first of the two.
class Ordering {
 public:
  explicit Ordering(std::vector<Change>& changes) : changes_(changes) {}
  Ordering(const Ordering&) = delete;
  Ordering& operator=(const Ordering&) = delete;
  ~Ordering() {
    sortByName(changes_);
    size_t kept = 0;
    for (size_t next = 1; next < changes_.size(); ++next) {
      if (changes_[next] == changes_[kept]) {
        changes_[kept].before = std::min(changes_[kept].before, changes_[next].before);
      } else if (++kept != next) {
        changes_[kept] = std::move(changes_[next]);
      }
    }
    if (changes_.empty()) return;
    changes_.erase(changes_.begin() + std::ptrdiff_t(kept) + 1, changes_.end());
  }

 private:
  std::vector<Change>& changes_;
};

// Empties a transaction however its commit ends.
class Emptying {
 public:
  explicit Emptying(StagedValues& staged) : staged_(staged) {}
  Emptying(const Emptying&) = delete;
  Emptying& operator=(const Emptying&) = delete;
  ~Emptying() { staged_.clear(); }

 private:
  StagedValues& staged_;
};

}  // namespace

void CommitRecord::makeRoomForUnreported() {
  if (unreported_.size() == unreported_.capacity()) unreported_.reserve(2 * unreported_.size() + 8);
}

int commit(Transaction& transaction, std::vector<Change>& changes, ChangeRoom* room,
           CommitRecord* record) {
  StagedValues& staged = transaction.staged();
  const Emptying emptying(staged);
  resolveResets(staged);
  const std::optional<Plan> plan = planCommit(transaction.database(), staged);
  if (!plan) return COMMIT_TOO_LARGE;
  changes.reserve(changes.size() + plan->size());
  const Ordering ordering(changes);
  Report report(changes, room, record);
  return walkCommit(*plan, staged, [&](StagedEntry& entry, IndexSituations& situations) {
    return commitEntry(entry, situations, report);
  });
}
