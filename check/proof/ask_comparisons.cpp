#include "check/proof/candidates.h"
#include "check/proof/compared_values.h"
#include "check/proof/questions.h"
#include "check/static/expression_tree.h"
#include "deflang/expression/operators.h"

namespace {

bool isLiteral(const ExpressionNode& node) {
  return node.isOperand() && node.token->kind != TOKEN_VARIABLE;
}

// Asks the comparisons of an expression, of a condition those that are only a part of it.
class Comparisons {
 public:
  Comparisons(Proof& proof, const Explained& explained, const Subject& subject, bool seesIndices)
      : proof_(proof), explained_(explained), subject_(subject), seesIndices_(seesIndices) {}

  void ask(const Expression& expression, ExpressionPurpose purpose) {
    if (expression.tokens.size() > MAX_ASKED_TOKENS) return;
    const std::optional<ExpressionTree> tree = ExpressionTree::make(expression);
    if (!tree) return;
    for (const ExpressionNode& node : tree->nodes()) {
      const bool isCondition = purpose == FOR_TRUTH && &node == &tree->nodes().back();
      if (isCondition || node.isOperand() || !comparesTexts(node.token->kind)) continue;
      const ExpressionNode& left = tree->node(node.left);
      const ExpressionNode& right = tree->node(node.right);
      if (isLiteral(left) == isLiteral(right)) continue;
      const CompiledExpression part = proof_.text().compile(
          {expression.tokens.subspan(node.first, node.last - node.first + 1)});
      const TextPlace at = tree->place(proof_.text().checked().source, left, right);
      askPart(part, at);
    }
  }

 private:
  // Tells that `part` is never true or always true, if so.
  void askPart(const CompiledExpression& part, const TextPlace& at) {
    if (explained_.usesMisspelt(part)) return;
    for (const ComparedValue& compared : comparedValues(proof_, part.expression)) {
      if (isToldOfStandard(proof_, compared)) return;
    }
    std::optional<Finding> undecided;
    for (const WantedResult wanted : {WANT_TRUE, WANT_UNTRUE}) {
      const Verdict verdict =
          proof_.decide({&subject_, {{{&part, wanted}}}, seesIndices_}, ANY_VARIANT);
      if (verdict == VERDICT_POSSIBLE) continue;
      Finding finding{
          "dead-comparison", at,
          wanted == WANT_TRUE ? "this comparison is never true" : "this comparison is always true"};
      if (verdict == VERDICT_IMPOSSIBLE) {
        explainValues(proof_, part.expression, finding);
        proof_.add(std::move(finding));
        return;
      }
      if (!undecided) undecided = std::move(finding);
    }
    if (undecided) proof_.addUndecided(*std::move(undecided));
  }

  Proof& proof_;
  const Explained& explained_;
  const Subject& subject_;
  bool seesIndices_;
};

}  // namespace

void askComparisons(Proof& proof, const Explained& explained) {
  const auto ask = [&](const Subject& subject, const std::vector<CompiledStatement>& statements,
                       bool seesIndices) {
    Comparisons comparisons(proof, explained, subject, seesIndices);
    const auto askValue = [&](const std::optional<CompiledExpression>& value) {
      if (!value || explained.explains(*value)) return;
      comparisons.ask(value->expression, FOR_VALUE);
    };
    for (const CompiledStatement& statement : statements) {
      if (explained.dead.contains(&statement)) continue;
      for (const CompiledItem& item : statement.items) {
        askValue(item.lower);
        askValue(item.upper);
      }
      if (!statement.condition || explained.told.contains(&statement) ||
          explained.explains(*statement.condition)) {
        continue;
      }
      comparisons.ask(statement.condition->expression, FOR_TRUTH);
    }
  };
  proof.forEachSubject([&](const Subject& subject) {
    ask(subject, subject.rangeValid, true);
    ask(subject, subject.rangeDoc, true);
    ask(subject, subject.ctrlRO, true);
    ask(subject, subject.ctrlValid, false);
    ask(subject, subject.defaults, true);
  });
}
