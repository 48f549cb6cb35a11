#include "check/proof/replay.h"

#include <algorithm>
#include <map>
#include <utility>

#include "check/proof/start_order.h"
#include "database/commit.h"

namespace {

int resetAndCommit(std::span<const std::string> names, Database& database) {
  Transaction transaction(database);
  for (const std::string& name : names) static_cast<void>(transaction.reset(name, true));
  std::vector<Change> changes;
  return commit(transaction, changes);
}

}  // namespace

void commitAll(Transaction& transaction) {
  std::vector<Change> changes;
  static_cast<void>(commit(transaction, changes));
}

bool resetTogether(std::span<const std::string> names, Database& database,
                   const Deadline& deadline) {
  const int result = resetAndCommit(names, database);
  if (result == COMMIT_DONE || result == COMMIT_TOO_LARGE) return result == COMMIT_DONE;
  bool areDone = true;
  for (size_t i = 0; i < names.size() && !deadline.isOver(); ++i) {
    areDone = resetAndCommit(names.subspan(i, 1), database) != COMMIT_TOO_LARGE && areDone;
  }
  return areDone;
}

ConfinedCommits::ConfinedCommits(const std::vector<std::string>& names, Database& database,
                                 Values values)
    : database_(database), names_(names), values_(values) {
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
  if (values_ == FORGET_VALUES) forgetValues();
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
  Commits commits;
  for (const auto& move : moves) commits.push_back({move});
  return commitFromDefaults(commits);
}

bool ConfinedCommits::commitFromDefaults(const Commits& commits) {
  forgetValues();
  for (const std::string& name : names_) static_cast<void>(resetAndCommit({&name, 1}, database_));
  return std::ranges::all_of(commits, [&](const NamedValues& together) {
    Transaction transaction(database_);
    const bool isStaged = std::ranges::all_of(together, [&](const auto& move) {
      return transaction.set(move.first, move.second, true) == STAGE_DONE;
    });
    if (isStaged) commitAll(transaction);
    return isStaged;
  });
}

void ConfinedCommits::start() {
  forgetValues();
  std::map<StartRound, std::vector<std::string>> rounds;
  for (const std::string& name : names_) {
    rounds[startRoundOf(*database_.findNamed(name))].push_back(name);
  }
  for (const auto& [order, names] : rounds) static_cast<void>(resetTogether(names, database_));
}

void ConfinedCommits::resetAtOnce() {
  forgetValues();
  static_cast<void>(resetTogether(names_, database_));
}

bool replay(const NamedValues& witness, Database& database, const Commits& commits) {
  std::vector<std::string> names;
  names.reserve(witness.size());
  for (const auto& [name, value] : witness) names.push_back(name);
  ConfinedCommits confined(names, database);
  // Values that hold each other may need a second round.
  NamedValues moves = witness;
  moves.insert(moves.end(), witness.begin(), witness.end());
  const bool isThere =
      commits.empty() ? confined.moveFromDefaults(moves) : confined.commitFromDefaults(commits);
  if (!isThere) return false;
  const Transaction reader(database);
  return std::all_of(witness.begin(), witness.end(), [&](const auto& pair) {
    const std::string* const held = reader.find(pair.first);
    return held != nullptr && *held == pair.second;
  });
}
