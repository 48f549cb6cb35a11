// Transaction owners: which client has opened which transaction, and the end of those whose client
// has left.
#pragma once

#include <cstdint>
#include <list>
#include <string_view>
#include <unordered_map>

#include "base/text_map.h"
#include "database/transaction.h"

/// A transaction outlives its client, as others may know its id. But what those whose client has
/// left hold together is bounded: beyond it they are ended, in the order in which the clients left.
class TransactionOwners {
 public:
  static constexpr size_t MAX_LEFT_BYTES = size_t{32} << 20U;
  /// What an empty transaction takes, with all that leads to it.
  static constexpr size_t BYTES_OF_EMPTY = 272;

  explicit TransactionOwners(Transactions& transactions) : transactions_(transactions) {}

  /// `client` has opened the transaction `id`; an empty name is a client that has left. Where
  /// memory is exhausted, nothing is noted.
  void opened(uint32_t id, std::string_view client);
  /// The transaction `id` is about to be ended; it need not be open.
  void ended(uint32_t id) noexcept;
  /// The transaction `id` may have grown or shrunk; it need not be open.
  void used(uint32_t id) noexcept;
  /// `client` has left.
  void left(std::string_view client) noexcept;

  /// What the transactions hold whose client has left.
  [[nodiscard]] size_t leftBytes() const { return leftBytes_; }

 private:
  using Ids = std::list<uint32_t>;
  using Clients = TextMap<Ids>;
  struct Owned {
    Clients::value_type* client = nullptr;  // null: it has left
    Ids::iterator place;                    // among the client's, or those that were left
    size_t bytes = 0;                       // of one that was left, as counted
  };

  void count(uint32_t id, Owned& owned);
  void endOldest() noexcept;

  Transactions& transactions_;
  Clients clients_;  // those that have opened some
  Ids left_;         // oldest first
  size_t leftBytes_ = 0;
  std::unordered_map<uint32_t, Owned> owned_;
};
