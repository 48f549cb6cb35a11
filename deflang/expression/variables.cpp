#include "deflang/expression/variables.h"

#include <algorithm>

#include "base/number.h"
#include "base/system_log.h"
#include "base/text_map.h"

namespace {

// Up to here a walk over the names is as fast as the table, and it needs no memory.
constexpr size_t MAX_WALKED_NAMES = 16;

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

uint32_t Variables::slot(std::string_view name) {
  if (const std::optional<uint32_t> known = find(name)) return *known;
  const auto added = static_cast<uint32_t>(names_.size());
  names_.emplace_back(name);
  if (names_.size() == MAX_WALKED_NAMES + 1) {
    for (uint32_t slot = 0; slot < added; ++slot)
      table_.change().add(TextHash{}(names_[slot]), slot);
  }
  if (names_.size() > MAX_WALKED_NAMES) table_.change().add(TextHash{}(name), added);
  return added;
}

std::optional<uint32_t> Variables::find(std::string_view name) const {
  if (names_.size() > MAX_WALKED_NAMES) {
    return table_->find(TextHash{}(name), [&](uint32_t slot) { return names_[slot] == name; });
  }
  const auto found = std::find(names_.begin(), names_.end(), name);
  if (found == names_.end()) return std::nullopt;
  return static_cast<uint32_t>(found - names_.begin());
}

void BoundVariables::add(const Variables& variables, const Situation& situation) {
  for (uint32_t slot = 0; slot < variables.size(); ++slot) {
    if (situation[slot].kind != OPERAND_INVALID) {
      values_.emplace(variables.names()[slot], situation[slot]);
    }
  }
}

void BoundVariables::dump() const {
  logError("Var list begin");
  for (const auto& [name, value] : values_) {
    logError("   \"" + std::string(name) + "\"=\"" + operandText(value) + "\"");
  }
  logError("Var list end");
}
