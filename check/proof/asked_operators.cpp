#include "check/proof/asked_operators.h"

#include <algorithm>

#include "check/proof/questions.h"
#include "check/static/expression_tree.h"
#include "database/gather.h"
#include "deflang/expression/operators.h"
#include "sw/parm/parm_name.h"

std::vector<AskedOperator> operatorsOf(const CompiledText& text, const Expression& expression,
                                       bool (*isAsked)(int32_t code)) {
  std::vector<AskedOperator> operators;
  if (expression.tokens.size() > MAX_ASKED_TOKENS) return operators;
  const std::optional<ExpressionTree> tree = ExpressionTree::make(expression);
  if (!tree) return operators;
  const auto compile = [&](const ExpressionNode& node) {
    return text.compile({expression.tokens.subspan(node.first, node.last - node.first + 1)});
  };
  for (const ExpressionNode& node : tree->nodes()) {
    if (node.isOperand() || !isAsked(node.token->kind)) continue;
    operators.push_back({node.token->kind, compile(tree->node(node.left)),
                         compile(tree->node(node.right)),
                         tree->place(text.checked().source, node)});
  }
  return operators;
}

std::optional<WantedResult> overflowOf(int32_t code) {
  switch (code) {
    case OP_ADD:
      return WANT_SUM_OVERFLOW;
    case OP_SUBTRACT:
      return WANT_DIFFERENCE_OVERFLOW;
    case OP_MULTIPLY:
      return WANT_PRODUCT_OVERFLOW;
    default:
      return std::nullopt;
  }
}

bool divides(int32_t code) { return code == OP_DIVIDE || code == OP_REMAINDER; }

Value valueIn(const NamedValues& witness, const Reader& reader,
              const CompiledExpression& expression) {
  const StagedValues staged;
  Situation situation(expression.variables.size());
  for (uint32_t slot = 0; slot < expression.sources.size(); ++slot) {
    const VariableSource& source = expression.sources[slot];
    if (source.parm == nullptr) {
      situation.bind(slot, reader.valueOf(source, staged));
      continue;
    }
    const std::string name = fullName(source.parm->parm.name(), reader.indicesOf(source));
    const auto held = std::ranges::find(witness, name, [](const auto& pair) { return pair.first; });
    const std::string_view text = held == witness.end() ? std::string_view() : held->second;
    situation.bind(slot, operandIn(source, operandOf(text)));
  }
  return expression.program.evaluate(situation);
}
