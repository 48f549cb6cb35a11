// Owned transactions: those that belong to one client alone, and end with it.
#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "base/text_map.h"

/// Which client owns which transaction. The service state opens and ends them.
class OwnedTransactions {
 public:
  /// So many of one client at most.
  static constexpr size_t MOST = 1000;

  /// How many `client` has.
  [[nodiscard]] size_t countOf(std::string_view client) const;
  /// The transaction `id` belongs to `client` from now on. Raises std::bad_alloc where memory is
  /// exhausted: it then belongs to nobody.
  void add(uint32_t id, std::string_view client);
  /// The owner of a transaction, or null where it belongs to nobody. Valid until that changes.
  [[nodiscard]] const std::string* ownerOf(uint32_t id) const;
  /// Whether `client` may not know of the transaction `id`.
  [[nodiscard]] bool isHiddenFrom(uint32_t id, std::string_view client) const {
    if (owners_.empty()) return false;
    const std::string* const owner = ownerOf(id);
    return owner != nullptr && *owner != client;
  }
  /// The transaction belongs to nobody any more.
  void remove(uint32_t id) noexcept;
  /// The transactions of `client`.
  [[nodiscard]] const std::set<uint32_t>* transactionsOf(std::string_view client) const;

 private:
  using Clients = TextMap<std::set<uint32_t>>;

  Clients clients_;  // that have some
  std::unordered_map<uint32_t, const Clients::value_type*> owners_;
};
