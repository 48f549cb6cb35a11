#include "check/proof/proof_memory.h"

#include "check/proof/references.h"

ProofMemory::ProofMemory(const ReadText& text, const ConstantChoices& choices) {
  std::map<std::string_view, Names> users;  // by what they name
  for (const ParameterRecord* const record : text.definitions.records.inNameOrder()) {
    forEachReference(*record, [&](std::string_view name) { users[name].insert(record->name); });
  }
  std::map<std::string_view, Names> own;
  for (const auto& [constant, values] : choices) {
    if (values.size() < 2) continue;
    std::vector<std::string_view> open = {constant};
    Names seen;
    while (!open.empty()) {
      const std::string_view next = open.back();
      open.pop_back();
      if (!seen.insert(next).second) continue;
      own[next].insert(constant);
      const Names& further = users[next];
      open.insert(open.end(), further.begin(), further.end());
    }
  }
  // Who follows a definition decides when it is judged, and which instances an index has.
  constants_ = own;
  for (const auto& [name, by] : users) {
    for (const std::string_view user : by) {
      const auto found = own.find(user);
      if (found != own.end()) constants_[name].insert(found->second.begin(), found->second.end());
    }
  }
}

std::string ProofMemory::keyOf(std::string_view name, const NamedValues& constants) const {
  std::string key(name);
  const auto found = constants_.find(name);
  if (found == constants_.end()) return key;
  for (const auto& [constant, value] : constants) {
    if (found->second.contains(constant)) key += '\n' + std::to_string(value.size()) + ':' + value;
  }
  return key;
}

const ProofResult* ProofMemory::find(std::string_view name, const NamedValues& constants) const {
  const auto found = results_.find(keyOf(name, constants));
  return found == results_.end() ? nullptr : &found->second;
}

void ProofMemory::keep(std::string_view name, const NamedValues& constants, ProofResult result) {
  results_.insert_or_assign(keyOf(name, constants), std::move(result));
}
