#include "deflang/variables.h"

#include <algorithm>
#include <bit>
#include <functional>

#include "deflang/number.h"
#include "deflang/system_log.h"

namespace {

// Up to here a walk over the names is as fast as the table, and it needs no memory.
constexpr size_t MAX_WALKED_NAMES = 16;

// How many places the table has at least for each name.
constexpr size_t PLACES_PER_NAME = 2;

}  // namespace

Operand operandOf(std::string_view text) {
  // A view of nothing means a number without a text.
  if (text.data() == nullptr) text = "";
  const std::optional<int32_t> number = wholeNumber(text);
  if (!number) return {OPERAND_STRING, 0, text};
  return {OPERAND_NUMBER, *number, text};
}

std::string operandText(const Operand& operand) {
  if (operand.text.data() == nullptr) return numberText(operand.number);
  return std::string(operand.text);
}

uint32_t Variables::slot(const std::string& name) {
  if (const std::optional<uint32_t> known = find(name)) return *known;
  const auto added = static_cast<uint32_t>(names_.size());
  names_.push_back(name);
  if (names_.size() > std::max(MAX_WALKED_NAMES, table_.size() / PLACES_PER_NAME)) {
    growTable();
  } else if (!table_.empty()) {
    table_[placeOf(name)] = added + 1;
  }
  return added;
}

std::optional<uint32_t> Variables::find(std::string_view name) const {
  if (!table_.empty()) {
    const uint32_t entry = table_[placeOf(name)];
    if (entry == 0) return std::nullopt;
    return entry - 1;
  }
  const auto found = std::find(names_.begin(), names_.end(), name);
  if (found == names_.end()) return std::nullopt;
  return static_cast<uint32_t>(found - names_.begin());
}

// Where `name` is in the table, or else would be.
size_t Variables::placeOf(std::string_view name) const {
  const size_t mask = table_.size() - 1;
  size_t place = std::hash<std::string_view>{}(name)&mask;
  while (table_[place] != 0 && names_[table_[place] - 1] != name) place = (place + 1) & mask;
  return place;
}

void Variables::growTable() {
  table_.assign(std::bit_ceil(names_.size()) * PLACES_PER_NAME, 0);
  for (uint32_t slot = 0; slot < names_.size(); ++slot) table_[placeOf(names_[slot])] = slot + 1;
}

void dumpVariables(const Variables& variables, const Situation& situation) {
  const std::vector<std::string>& names = variables.names();
  std::vector<uint32_t> bound;
  for (uint32_t slot = 0; slot < names.size(); ++slot) {
    if (situation[slot].kind != OPERAND_INVALID) bound.push_back(slot);
  }
  std::sort(bound.begin(), bound.end(),
            [&names](uint32_t a, uint32_t b) { return names[a] < names[b]; });
  logError("Var list begin");
  for (const uint32_t slot : bound) {
    logError("   \"" + names[slot] + "\"=\"" + operandText(situation[slot]) + "\"");
  }
  logError("Var list end");
}
