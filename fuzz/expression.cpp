// Fuzzes expressions: the first line of the input binds variables ("a=1;b=on"), the rest is an
// expression as it is between parentheses. It is read, checked and evaluated, and a second
// evaluator, as plain as possible, must come to the same.
#include <string>
#include <string_view>
#include <vector>

#include "deflang/expression/postfix.h"
#include "deflang/expression/program.h"
#include "deflang/text/expression_grammar.h"
#include "fuzz/demand.h"
#include "fuzz/fuzz_input.h"
#include "fuzz/fuzz_target.h"
#include "fuzz/plain_evaluator.h"

namespace {

// Takes everything up to `sign`, and the sign, from `text`.
std::string_view takeUpTo(std::string_view& text, char sign) {
  const size_t end = text.find(sign);
  const std::string_view taken = text.substr(0, end);
  text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
  return taken;
}

PlainVariables variablesOf(std::string_view bindings) {
  PlainVariables variables;
  while (!bindings.empty()) {
    std::string_view value = takeUpTo(bindings, ';');
    const std::string_view name = takeUpTo(value, '=');
    variables.emplace(name, value);
  }
  return variables;
}

// Reads the expression; what it leaves open is closed by a last line. False when it is not
// accepted.
bool read(std::string_view text, Arena& memory, Expression& expression) {
  const std::string lines = "(" + std::string(text) + "\n)";
  TextCursor cursor(linesIn(lines), memory);
  const bool isRead = readExpression(cursor, expression);
  demand(cursor.position().column <= cursor.line().size(), "the caret is behind the line");
  return isRead;
}

Situation situationOf(const Variables& names, const PlainVariables& variables) {
  Situation situation(names.size());
  for (uint32_t slot = 0; slot < names.size(); ++slot) {
    const auto found = variables.find(names[slot]);
    if (found != variables.end()) situation.bind(slot, operandOf(found->second));
  }
  return situation;
}

std::string textOf(const Value& value) {
  if (!value.valid()) return "none";
  return (value.isNumber() ? "number " : "text ") + value.asText();
}

std::string textOf(const PlainValue& value) {
  if (!value) return "none";
  if (value->index() == 0) return "number " + std::to_string(std::get<int32_t>(*value));
  return "text " + std::get<std::string>(*value);
}

bool isTrue(const PlainValue& value) {
  if (!value) return false;
  return value->index() == 0 ? std::get<int32_t>(*value) != 0
                             : !std::get<std::string>(*value).empty();
}

void expectSame(const Expression& expression, const PlainVariables& variables) {
  const PlainResult plain = evaluatePlainly(expression.tokens, variables);
  Variables names;
  Program program;
  const int failedAt = Program::compile(expression, names, program);
  demand(failedAt == plain.failedAt, "fails at ", std::to_string(failedAt), ", plainly at ",
         std::to_string(plain.failedAt));
  std::vector<const Token*> order;
  demand(postfixOrder(expression, order) == failedAt, "the check is not the program's");
  const Situation situation = situationOf(names, variables);
  const Value value = program.evaluate(situation);
  demand(textOf(value) == textOf(plain.value), textOf(value), ", plainly ", textOf(plain.value));
  demand(program.isTrue(situation) == isTrue(plain.value), "the truth is not the value's");
  demand(value.isTrue() == isTrue(plain.value), "a value's truth differs");
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::string_view text = ::textOf(data, size);
  const PlainVariables variables = variablesOf(takeUpTo(text, '\n'));
  Arena memory;
  Expression expression;
  if (read(text, memory, expression) && !nestsTooDeep(expression.tokens)) {
    expectSame(expression, variables);
  }
  return 0;
}
