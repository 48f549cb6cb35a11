// Transaction owners: which client has opened which transaction, and the end of those whose client
// has left.
//
// The service state (service_state.h) tells it of each opening, use and end, in the main loop's
// thread.
#pragma once

#include <cstdint>
#include <list>
#include <string_view>
#include <unordered_map>

#include "base/text_map.h"
#include "database/transaction.h"

/// A transaction outlives its client, as others may know its id. But the transactions whose client
/// has left hold at most MAX_LEFT_BYTES together: beyond that they are ended, in the order in which
/// the clients left, and of one client's in the order in which they were opened. Transactions whose
/// client is on the bus are neither counted nor ended.
class TransactionOwners {
 public:
  /// 32 MiB, as org.tavrel.transaction(7) says: without a limit, a client that crashes in a loop
  /// would fill the memory.
  static constexpr size_t MAX_LEFT_BYTES = size_t{32} << 20U;
  /// What an empty transaction takes, with its places in all tables, in bytes.
  static constexpr size_t BYTES_OF_EMPTY = 272;

  /// For the open transactions `transactions`, which outlive it.
  explicit TransactionOwners(Transactions& transactions) : transactions_(transactions) {}

  /// `client` (a unique name of the bus, which is copied) has opened the transaction `id`; an empty
  /// name is a client that has left. Raises std::bad_alloc where memory is exhausted: nothing is
  /// noted then. May end transactions, also this one.
  void opened(uint32_t id, std::string_view client);
  /// The transaction `id` is about to be ended; one that is not noted is passed over.
  void ended(uint32_t id) noexcept;
  /// The transaction `id` may have grown or shrunk; one that is not noted is passed over. May end
  /// transactions whose client has left, also this one.
  void used(uint32_t id) noexcept;
  /// `client` has left the bus: its transactions count from now on, which takes time in proportion
  /// to their number. May end transactions.
  void left(std::string_view client) noexcept;

  /// What the transactions whose client has left hold, in bytes, as counted at their last use; at
  /// most MAX_LEFT_BYTES.
  [[nodiscard]] size_t leftBytes() const { return leftBytes_; }

 private:
  using Ids = std::list<uint32_t>;
  using Clients = TextMap<Ids>;
  struct Owned {
    Clients::value_type* client = nullptr;  // null: it has left
    Ids::iterator place;                    // in the client's list, or in left_
    size_t bytes = 0;                       // as counted in leftBytes_; 0 while the client is there
  };

  void count(uint32_t id, Owned& owned);
  void endOldest() noexcept;

  Transactions& transactions_;
  Clients clients_;  // each with its transactions; only clients that have some
  Ids left_;         // transactions whose client has left, oldest first
  size_t leftBytes_ = 0;
  std::unordered_map<uint32_t, Owned> owned_;
};
