#include "check/proof/questions.h"
#include "check/static/expression_tree.h"
#include "deflang/expression/operators.h"

namespace {

std::optional<WantedResult> wishOf(int32_t code) {
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

// Asks the sums and products of one expression, in situations in which `counts` holds.
void askExpression(Proof& proof, const Goal& counts, const Expression& expression) {
  if (expression.tokens.size() > MAX_ASKED_TOKENS) return;
  const std::optional<ExpressionTree> tree = ExpressionTree::make(expression);
  if (!tree) return;
  const auto compile = [&](const ExpressionNode& node) {
    return proof.text().compile(
        {expression.tokens.subspan(node.first, node.last - node.first + 1)});
  };
  for (const ExpressionNode& node : tree->nodes()) {
    const std::optional<WantedResult> wanted =
        node.isOperand() ? std::nullopt : wishOf(node.token->kind);
    if (!wanted) continue;
    const CompiledExpression left = compile(tree->node(node.left));
    const CompiledExpression right = compile(tree->node(node.right));
    if (left.sources.empty() && right.sources.empty()) continue;
    Goal goal = counts;
    goal.clauses.push_back({{&left, *wanted, &right}});
    const TextPlace at = tree->place(proof.text().checked().source, node);
    if (proof.addIfHealthy(goal,
                           {"overflow", at,
                            "this can pass what 32 bits hold, and then goes on from the other "
                            "end"})) {
      return;
    }
  }
}

void askStatements(Proof& proof, const Subject& subject,
                   const std::vector<CompiledStatement>& statements, bool seesIndices,
                   const Explained& explained) {
  for (const CompiledStatement& statement : statements) {
    if (explained.explains(statement) || explained.dead.contains(&statement)) continue;
    const Goal always{&subject, {}, seesIndices};
    Goal counts = always;
    if (statement.condition) {
      askExpression(proof, always, statement.condition->expression);
      counts.clauses.push_back({{&*statement.condition, WANT_TRUE}});
    }
    for (const CompiledItem& item : statement.items) {
      if (item.lower) askExpression(proof, counts, item.lower->expression);
      if (item.upper) askExpression(proof, counts, item.upper->expression);
    }
  }
}

}  // namespace

void askOverflow(Proof& proof, const Explained& explained) {
  proof.forEachSubject([&](const Subject& subject) {
    askStatements(proof, subject, subject.rangeValid, true, explained);
    askStatements(proof, subject, subject.rangeDoc, true, explained);
    askStatements(proof, subject, subject.ctrlRO, true, explained);
    askStatements(proof, subject, subject.ctrlValid, false, explained);
    askStatements(proof, subject, subject.defaults, true, explained);
  });
}
