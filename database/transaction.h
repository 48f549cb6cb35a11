// Transactions: a client's own view of the parameters, with the values it has staged.
//
// With these definitions,
//
//   mode rw { rangeValid { "slow", "fast" } }
//   rate rw { rangeValid (mode == "slow") { 1..10 } rangeValid (mode == "fast") { 1..100 } }
//
// a value is staged, seen by its transaction alone, and committed (commit.h) so:
//
//   Transaction transaction(database);
//   transaction.set("mode", "slow", false);  // STAGE_DONE
//   transaction.set("rate", "50", false);    // STAGE_DONE: in some mode it is valid
//   *transaction.find("rate");               // "50"
//   std::vector<Change> changes;
//   commit(transaction, changes);            // COMMIT_DONE, and rate has followed the mode:
//                                            // changes are mode with "slow", rate with "10"
#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <string_view>

#include "base/work.h"
#include "database/database.h"
#include "database/staged_values.h"

/// Results of set and reset.
enum StageResult : int {
  STAGE_DONE = 0,
  STAGE_INVALID_NAME = 1,   ///< no such parameter, or a part of the name is too long
  STAGE_INVALID_VALUE = 2,  ///< the base bounds refuse the value, or it is too long
};

/// What it costs to stage `value` for the instance `name`, in units of work.
constexpr uint64_t stagingWork(std::string_view name, std::string_view value) {
  return WORK_PER_REQUEST + WORK_PER_VALUE_BYTE * (name.size() + value.size());
}

/// Each call counts its work, and raises WorkExceeded where the request passes its budget
/// (base/work.h). Where memory is exhausted (std::bad_alloc), what was staged before stays.
class Transaction {
 public:
  /// An empty transaction of `database`, which has to live as long.
  explicit Transaction(Database& database) : database_(database) {}

  /// Stages `value` for the instance `name`. `force` has commit write it also where it is
  /// read-only. Returns STAGE_DONE; STAGE_INVALID_NAME where no such parameter is defined;
  /// STAGE_INVALID_VALUE where the base bounds refuse the value: the instance is then staged with
  /// what it held before.
  int set(std::string_view name, const std::string& value, bool force);
  /// Stages the default for the instance `name`; it is worked out at commit. Returns STAGE_DONE or
  /// STAGE_INVALID_NAME.
  int reset(std::string_view name, bool force);
  /// The value of `name` as the transaction sees it: staged, else committed, else a constant's.
  /// Returns 0, 1 for a name that is neither, or 2 for "sw::this", which is never looked up;
  /// `value` is then left alone.
  int get(std::string_view name, std::string& value) const;
  /// Where the value is that get() gives, or null. The pointer holds until a value is staged or
  /// stored.
  [[nodiscard]] const std::string* find(std::string_view name) const;
  /// Looks up at most Database::NAMES_TOGETHER names at once; `found`, as long as `names`, gets
  /// what find() gives for each.
  void findAll(std::span<char* const> names, std::span<const std::string*> found) const;
  /// Whether the base bounds of the parameter `name` accept `value`; false without such a
  /// parameter.
  [[nodiscard]] bool validate(std::string_view name, const std::string& value) const;

  /// When it was opened, by the clock of Transactions::open(); only of transactions opened there.
  [[nodiscard]] std::chrono::steady_clock::time_point openedAt() const { return openedAt_; }
  void setOpenedAt(std::chrono::steady_clock::time_point time) { openedAt_ = time; }

  /// The memory that is taken by what is staged, in bytes.
  [[nodiscard]] size_t bytes() const { return staged_.bytes(); }

  [[nodiscard]] Database& database() const { return database_; }
  [[nodiscard]] StagedValues& staged() { return staged_; }
  [[nodiscard]] const StagedValues& staged() const { return staged_; }

 private:
  [[nodiscard]] const std::string* valueOf(std::string_view name, const ParmEntry* parm) const;
  StagedEntry* stage(std::string_view name);

  Database& database_;
  StagedValues staged_;
  std::chrono::steady_clock::time_point openedAt_;
};

/// The open transactions by id.
class Transactions {
 public:
  explicit Transactions(Database& database) : database_(database) {}
  /// Uses up the next free id: ids ascend from 0, wrap at 2^32 and skip those that are open.
  /// Returns 0, or 1 when every id is in use.
  int useId(uint32_t& id);
  /// Opens a transaction under the next free id. Returns null when there is none.
  Transaction* open(uint32_t& id);
  /// The open transaction of an id, or null.
  [[nodiscard]] Transaction* find(uint32_t id);
  /// Discards a transaction with its staged values. Returns 0, or 1 for an id that is not open.
  int end(uint32_t id);
  /// All that are open, by id.
  [[nodiscard]] const std::map<uint32_t, Transaction>& all() const { return open_; }
  /// Goes on with `id`, as after so many transactions; tests reach the end of the ids with it.
  void continueWith(uint32_t id) { nextId_ = id; }

 private:
  Database& database_;
  std::map<uint32_t, Transaction> open_;
  uint32_t nextId_ = 0;
};
