#include "sw/parm/build/classify.h"

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace {

// The value of a single number or text, which most expressions are.
std::optional<Value> literalValue(const Expression& expression) {
  if (expression.tokens.size() != 1) return std::nullopt;
  const Token& token = expression.tokens.front();
  switch (token.kind) {
    case TOKEN_NUMBER:
      return Value{OPERAND_NUMBER, token.number, {}};
    case TOKEN_STRING:
      return Value{OPERAND_STRING, 0, std::string(token.text)};
    default:
      return std::nullopt;
  }
}

// Gives the names that are constants their values. Returns how many there are.
size_t bindConstants(const Variables& variables, const BuildContext& context,
                     Situation& situation) {
  size_t constants = 0;
  for (uint32_t slot = 0; slot < variables.size(); ++slot) {
    const std::string* const value = context.findConstant(variables[slot]);
    if (value == nullptr) continue;
    situation.bind(slot, operandOf(*value));
    ++constants;
  }
  return constants;
}

Classification leaveOut(const Expression& expression, size_t token, DefinitionDraft& draft) {
  draft.error(DIAG_INVALID_EXPRESSION, tokenPosition(expression, token));
  return {LEFT_OUT};
}

// What an expression is for. A name that is no constant leaves every value open; a condition may be
// decided without it.
enum Purpose { AS_VALUE, AS_CONDITION };

Classification classify(const Expression& expression, Purpose purpose, DefinitionDraft& draft) {
  if (std::optional<Value> literal = literalValue(expression)) {
    return {DECIDED, *std::move(literal)};
  }
  Compiled compiled;
  Variables& variables = compiled.variables;
  const int failed = Program::compile(expression, variables, compiled.program);
  if (failed != 0) return leaveOut(expression, failed < 0 ? 0 : static_cast<size_t>(failed), draft);
  Situation situation(variables.size());
  const size_t constants = bindConstants(variables, draft.context(), situation);
  const bool isOpen = constants < variables.size();
  if (purpose == AS_CONDITION || !isOpen) {
    Value value = compiled.program.evaluate(situation);
    if (value.valid()) return {DECIDED, std::move(value), constants > 0};
  }
  if (isOpen) return {RUN_TIME, {}, constants > 0, std::move(compiled)};
  return leaveOut(expression, 1, draft);
}

}  // namespace

Classification classifyValue(const Expression& expression, DefinitionDraft& draft) {
  return classify(expression, AS_VALUE, draft);
}

Condition classifyControl(const Expression& condition, DefinitionDraft& draft) {
  Classification classified = classify(condition, AS_CONDITION, draft);
  switch (classified.decision) {
    case DECIDED:
      return {classified.value.isTrue() ? CONDITION_ALWAYS : CONDITION_NEVER,
              classified.namesConstant};
    case RUN_TIME:
      return {CONDITION_RUN_TIME, classified.namesConstant, std::move(classified.compiled)};
    default:
      return {CONDITION_LEFT_OUT};
  }
}

Condition classifyCondition(const Expression& condition, DefinitionDraft& draft) {
  if (condition.empty()) return {CONDITION_ALWAYS};
  return classifyControl(condition, draft);
}
