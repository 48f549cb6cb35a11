#include "sw/dbus/owned_transactions.h"

size_t OwnedTransactions::countOf(std::string_view client) const {
  const std::set<uint32_t>* const ids = transactionsOf(client);
  return ids == nullptr ? 0 : ids->size();
}

void OwnedTransactions::add(uint32_t id, std::string_view client) {
  const auto known = clients_.try_emplace(std::string(client)).first;
  try {
    owners_.emplace(id, &*known);
    known->second.insert(id);
  } catch (...) {
    owners_.erase(id);
    if (known->second.empty()) clients_.erase(known);
    throw;
  }
}

const std::string* OwnedTransactions::ownerOf(uint32_t id) const {
  const auto found = owners_.find(id);
  return found == owners_.end() ? nullptr : &found->second->first;
}

void OwnedTransactions::remove(uint32_t id) noexcept {
  const auto found = owners_.find(id);
  if (found == owners_.end()) return;
  const auto client = clients_.find(found->second->first);
  client->second.erase(id);
  if (client->second.empty()) clients_.erase(client);
  owners_.erase(found);
}

const std::set<uint32_t>* OwnedTransactions::transactionsOf(std::string_view client) const {
  const auto found = clients_.find(client);
  return found == clients_.end() ? nullptr : &found->second;
}
