#include "check/proof/replay.h"

#include <algorithm>
#include <utility>

#include "database/commit.h"
#include "database/transaction.h"

namespace {

// What is refused is no matter of the one who commits.
void commitAll(Transaction& transaction) {
  std::vector<Change> changes;
  static_cast<void>(commit(transaction, changes));
}

}  // namespace

ConfinedCommits::ConfinedCommits(const std::vector<std::string>& names, Database& database)
    : database_(database), names_(names) {
  const uint32_t walk = database.newWalk();
  for (const std::string& name : names) {
    ParmEntry* const parm = database.findNamed(name);
    if (std::exchange(parm->walk, walk) != walk) parms_.push_back(parm);
  }
  for (ParmEntry* const parm : parms_) {
    confine(parm->dependents, walk);
    if (!parm->isNamedByIndices) continue;
    for (IndexEntry* const index : parm->indices->naming) {
      if (std::exchange(index->walk, walk) != walk) confine(index->dependents, walk);
    }
  }
}

ConfinedCommits::~ConfinedCommits() {
  forgetValues();
  for (auto& [dependents, all] : confined_) dependents->swap(all);
}

// Leaves those that the walk has marked.
void ConfinedCommits::confine(std::vector<ParmEntry*>& dependents, uint32_t walk) {
  std::vector<ParmEntry*> within;
  std::copy_if(dependents.begin(), dependents.end(), std::back_inserter(within),
               [&](const ParmEntry* dependent) { return dependent->walk == walk; });
  if (within.size() == dependents.size()) return;
  Work::add(WORK_PER_COMPARISON * dependents.size());
  confined_.emplace_back(&dependents, std::move(within));
  dependents.swap(confined_.back().second);
}

void ConfinedCommits::forgetValues() {
  for (ParmEntry* const parm : parms_) parm->parm.forgetValues();
}

bool ConfinedCommits::moveFromDefaults(const NamedValues& moves) {
  forgetValues();
  for (const std::string& name : names_) {
    Transaction transaction(database_);
    static_cast<void>(transaction.reset(name, true));
    commitAll(transaction);
  }
  return std::all_of(moves.begin(), moves.end(), [&](const auto& move) {
    Transaction transaction(database_);
    if (transaction.set(move.first, move.second, true) != STAGE_DONE) return false;
    commitAll(transaction);
    return true;
  });
}

bool replay(const NamedValues& witness, Database& database) {
  std::vector<std::string> names;
  names.reserve(witness.size());
  for (const auto& [name, value] : witness) names.push_back(name);
  // Values that hold each other may need a second round.
  NamedValues moves = witness;
  moves.insert(moves.end(), witness.begin(), witness.end());
  ConfinedCommits commits(names, database);
  if (!commits.moveFromDefaults(moves)) return false;
  const Transaction reader(database);
  return std::all_of(witness.begin(), witness.end(), [&](const auto& pair) {
    const std::string* const held = reader.find(pair.first);
    return held != nullptr && *held == pair.second;
  });
}
