#include "sw/dbus/transaction_owners.h"

#include "sw/dbus/spare_memory.h"

void TransactionOwners::opened(uint32_t id, std::string_view client) {
  Ids place = {id};
  Owned& owned = owned_[id];
  owned.place = place.begin();
  try {
    if (!client.empty()) owned.client = &*clients_.try_emplace(std::string(client)).first;
  } catch (...) {
    owned_.erase(id);
    throw;
  }
  Ids& ids = owned.client == nullptr ? left_ : owned.client->second;
  ids.splice(ids.end(), place);
  used(id);
}

void TransactionOwners::ended(uint32_t id) noexcept {
  const auto found = owned_.find(id);
  if (found == owned_.end()) return;
  const Owned& owned = found->second;
  leftBytes_ -= owned.bytes;
  if (owned.client == nullptr) {
    left_.erase(owned.place);
  } else {
    owned.client->second.erase(owned.place);
    if (owned.client->second.empty()) clients_.erase(clients_.find(owned.client->first));
  }
  owned_.erase(found);
}

void TransactionOwners::used(uint32_t id) noexcept {
  if (left_.empty()) return;
  const auto found = owned_.find(id);
  if (found == owned_.end() || found->second.client != nullptr) return;
  count(id, found->second);
  endOldest();
}

void TransactionOwners::left(std::string_view client) noexcept {
  const auto known = clients_.find(client);
  if (known == clients_.end()) return;
  for (const uint32_t id : known->second) {
    Owned& owned = owned_.find(id)->second;
    owned.client = nullptr;
    count(id, owned);
  }
  left_.splice(left_.end(), known->second);
  clients_.erase(known);
  endOldest();
}

void TransactionOwners::count(uint32_t id, Owned& owned) {
  const Transaction* transaction = transactions_.find(id);
  const size_t bytes = transaction == nullptr ? 0 : BYTES_OF_EMPTY + transaction->bytes();
  leftBytes_ += bytes - owned.bytes;
  owned.bytes = bytes;
}

void TransactionOwners::endOldest() noexcept {
  if (leftBytes_ <= MAX_LEFT_BYTES) return;
  do {
    const uint32_t id = left_.front();
    ended(id);
    static_cast<void>(transactions_.end(id));  // one that is not open need not be ended
  } while (leftBytes_ > MAX_LEFT_BYTES);
  returnSpareMemorySoon();
}
