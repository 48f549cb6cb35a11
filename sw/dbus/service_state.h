// The state of the service: what every method works on.
//
// It belongs to the main loop's thread. Around each call the call server sets the caller, has the
// method run, and finishes the call; the method in between opens, finds and ends transactions.
#pragma once

#include <glib.h>

#include <cstdint>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "database/commit.h"
#include "database/database.h"
#include "database/transaction.h"
#include "sw/dbus/owned_transactions.h"
#include "sw/dbus/transaction_owners.h"

/// Is told what clients have done, for whoever serves more than the methods.
class ServiceObserver {
 public:
  ServiceObserver() = default;
  virtual ~ServiceObserver() = default;
  ServiceObserver(const ServiceObserver&) = delete;
  ServiceObserver& operator=(const ServiceObserver&) = delete;
  /// `caller` has committed `changes`, ascending by name, and what the `record` (see commit()) has
  /// beside them; it has something, or there are changes. The client is the empty text where it has
  /// left. The values are stored and announced already; the call is not answered yet.
  virtual void committed(std::string_view caller, std::vector<Change> changes,
                         CommitRecord record) noexcept = 0;
  /// A call has its answer, and the next is not served yet; the name of the `caller` that
  /// committed() was told lives until then.
  virtual void callFinished() noexcept = 0;
  /// The client with this unique name has left the bus.
  virtual void clientLeft(std::string_view name) noexcept = 0;
};

/// The methods are plain functions for the binding library and are handed no state of ours, so they
/// find it through one pointer: the state that was made last. One lives at a time.
class ServiceState {
 public:
  /// The current state from now on, with neither main loop nor lock. `database` outlives it.
  explicit ServiceState(Database& database);
  /// Drops the open transactions, gives up the lock and frees the main loop. There is no current
  /// state then.
  ~ServiceState();
  ServiceState(const ServiceState&) = delete;
  ServiceState& operator=(const ServiceState&) = delete;

  /// The state that lives. That there is none is a programming error and stops the program.
  static ServiceState& current();

  /// Makes the main loop. Returns 0, or 1 when it cannot be had.
  int createMainLoop();
  /// Makes the lock. Returns 0, or 1 when it cannot be had.
  int createLock();
  /// Frees the lock, which nobody may hold, and ends the main loop, as far as they were made. Calls
  /// that are served afterwards find no lock.
  void stop();

  /// The unique name of the client whose call is served next; empty where that has left. The text
  /// outlives the call.
  void setCaller(std::string_view name) { caller_ = name; }
  [[nodiscard]] std::string_view caller() const { return caller_; }
  /// `observer`, which outlives the state, is told from now on; null: nobody is.
  void setObserver(ServiceObserver* observer) { observer_ = observer; }
  /// To be called when `changes` of the caller's are stored and announced.
  void committed(std::vector<Change> changes, CommitRecord record) noexcept {
    if (observer_ == nullptr || (changes.empty() && record.unreported().empty())) return;
    observer_->committed(caller_, std::move(changes), std::move(record));
  }
  /// Opens a transaction of the caller's under the next free id. Returns 0, or 1 where every id is
  /// in use; `id` is then the last one that was tried. Raises std::bad_alloc where memory is
  /// exhausted: no transaction is open then, but the id may be used up.
  int openTransaction(uint32_t& id);
  /// As openTransaction(), but the transaction is the caller's alone and ends when that leaves the
  /// bus. Returns 2 where the caller has OwnedTransactions::MOST already, or has left.
  int openOwnTransaction(uint32_t& id);
  /// The open transaction of `id`, or null where there is none that the caller may use. It is noted
  /// as that of the call: finishCall() counts what it holds. Valid until it is ended.
  [[nodiscard]] Transaction* findTransaction(uint32_t id);
  /// Ends a transaction and drops what is staged in it. Returns 0, or 1 for an id of none that the
  /// caller may use.
  int endTransaction(uint32_t id);
  /// To be called when a call is done and answered. Its transaction may have grown; where that is
  /// one whose client has left, the oldest of those may be ended (transaction_owners.h).
  void finishCall() noexcept;
  /// The client with this unique name has left the bus.
  void clientLeft(std::string_view name) noexcept;

  /// The database that was given to the constructor.
  [[nodiscard]] Database& database() { return database_; }
  /// The open transactions of all clients. Ending one here leaves its owner noted: use
  /// endTransaction().
  [[nodiscard]] Transactions& transactions() { return transactions_; }
  /// The transactions that belong to one client each.
  [[nodiscard]] const OwnedTransactions& owned() const { return owned_; }
  /// The main loop, which stays the state's; null before createMainLoop().
  [[nodiscard]] GMainLoop* mainLoop() { return mainLoop_; }
  /// The lock that methods hold while they run (method_frame.h says why there is one); null before
  /// createLock() and after stop().
  [[nodiscard]] GMutex* lock() { return lock_; }

 private:
  void freeLock();

  Database& database_;
  Transactions transactions_;
  TransactionOwners owners_{transactions_};
  OwnedTransactions owned_;
  ServiceObserver* observer_ = nullptr;
  std::string_view caller_;
  std::optional<uint32_t> used_;  // the transaction of the call that is being served
  GMainLoop* mainLoop_ = nullptr;
  GMutex* lock_ = nullptr;
};
