#include "database/transaction.h"

#include <array>
#include <cassert>

#include "base/work.h"
#include "sw/parm/parm_name.h"

int Transaction::set(std::string_view name, const std::string& value, bool force) {
  Work::add(stagingWork(name, value));
  StagedEntry* entry = stage(name);
  if (entry == nullptr) return STAGE_INVALID_NAME;
  if (!entry->parm->parm.checkBase(value)) return STAGE_INVALID_VALUE;
  entry->reset = false;
  entry->force = force;
  entry->value.set(value);
  return STAGE_DONE;
}

int Transaction::reset(std::string_view name, bool force) {
  Work::add(stagingWork(name, {}));
  StagedEntry* entry = stage(name);
  if (entry == nullptr) return STAGE_INVALID_NAME;
  entry->reset = true;
  entry->force = force;
  return STAGE_DONE;
}

int Transaction::get(std::string_view name, std::string& value) const {
  if (name == THIS_VALUE) return 2;
  const std::string* const found = find(name);
  if (found == nullptr) return 1;
  value = *found;
  return 0;
}

const std::string* Transaction::find(std::string_view name) const {
  return valueOf(name, database_.findParm(baseName(name)));
}

void Transaction::findAll(std::span<char* const> names, std::span<const std::string*> found) const {
  assert(names.size() <= Database::NAMES_TOGETHER && found.size() >= names.size());
  std::array<std::string_view, Database::NAMES_TOGETHER> bases;
  for (size_t i = 0; i < names.size(); ++i) bases[i] = baseName(names[i]);
  database_.findAll(std::span(bases).first(names.size()),
                    [&](size_t i, const ParmEntry* parm) { found[i] = valueOf(names[i], parm); });
}

// `parm` is the parameter of the name's base name, or null.
const std::string* Transaction::valueOf(std::string_view name, const ParmEntry* parm) const {
  Work::add(WORK_PER_REQUEST + name.size());
  if (name == THIS_VALUE || hasTooLongPart(name)) return nullptr;
  if (parm == nullptr) return database_.findConstant(name);
  const bool isBare = name.size() == parm->parm.name().size();
  return &staged_.text(*parm, isBare ? IndexTuple{} : splitName(name).indices);
}

bool Transaction::validate(std::string_view name, const std::string& value) const {
  Work::add(stagingWork(name, value));
  const ParmEntry* parm = database_.findNamed(name);
  return parm != nullptr && parm->parm.checkBase(value);
}

StagedEntry* Transaction::stage(std::string_view name) {
  ParmEntry* parm = database_.findNamed(name);
  return parm == nullptr ? nullptr : &staged_.stage(*parm, splitName(name).indices, false);
}

int Transactions::useId(uint32_t& id) {
  const uint32_t start = nextId_;
  do {
    id = nextId_++;
    if (!open_.contains(id)) return 0;
  } while (nextId_ != start);
  return 1;
}

Transaction* Transactions::open(uint32_t& id) {
  if (useId(id) != 0) return nullptr;
  Transaction& transaction = open_.try_emplace(id, database_).first->second;
  transaction.setOpenedAt(std::chrono::steady_clock::now());
  return &transaction;
}

Transaction* Transactions::find(uint32_t id) {
  const auto found = open_.find(id);
  return found == open_.end() ? nullptr : &found->second;
}

int Transactions::end(uint32_t id) { return open_.erase(id) == 1 ? 0 : 1; }
