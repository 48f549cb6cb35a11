#include "deflang/expression/variables.h"

#include <optional>

#include "base/number.h"
#include "base/system_log.h"

Operand operandOf(std::string_view text) {
  // A view without data means a number without a text.
  if (text.data() == nullptr) text = "";
  const std::optional<int32_t> number = wholeNumber(text);
  if (!number) return {OPERAND_STRING, 0, text};
  return {OPERAND_NUMBER, *number, text};
}

std::string operandText(const Operand& operand) {
  if (operand.text.data() == nullptr) return numberText(operand.number);
  return std::string(operand.text);
}

void BoundVariables::add(const Variables& variables, const Situation& situation) {
  for (uint32_t slot = 0; slot < variables.size(); ++slot) {
    if (situation[slot].kind != OPERAND_INVALID) values_.emplace(variables[slot], situation[slot]);
  }
}

void BoundVariables::dump() const {
  logError("Var list begin");
  for (const auto& [name, value] : values_) {
    logError("   \"" + std::string(name) + "\"=\"" + operandText(value) + "\"");
  }
  logError("Var list end");
}
