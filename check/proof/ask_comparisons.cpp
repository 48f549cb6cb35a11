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
    std::vector<bool> isTold(tree->nodes().size());
    const std::vector<size_t> parents = parentsOf(*tree);
    for (size_t place = 0; place < isTold.size(); ++place) {
      const ExpressionNode& node = tree->node(place);
      const bool isWhole = place + 1 == isTold.size();
      if (node.isOperand() || (purpose == FOR_TRUTH && isWhole)) continue;
      isTold[place] = isTold[node.left] || isTold[node.right];
      if (isTold[place]) continue;
      const ExpressionNode& left = tree->node(node.left);
      const ExpressionNode& right = tree->node(node.right);
      const int32_t code = node.token->kind;
      const bool isComparison = comparesTexts(code) && isLiteral(left) != isLiteral(right);
      const bool isGroup = (code == OP_LOGICAL_AND || code == OP_LOGICAL_OR) &&
                           isAsked(*tree, parents, place, purpose);
      if (!isComparison && !isGroup) continue;
      const CompiledExpression part = proof_.text().compile(
          {expression.tokens.subspan(node.first, node.last - node.first + 1)});
      const TextPlace at = tree->place(proof_.text().checked().source, left, right);
      isTold[place] = isComparison ? askPart(part, at) : askGroup(part, at, code);
    }
  }

 private:
  // The node that each is a side of; of the last one none.
  static std::vector<size_t> parentsOf(const ExpressionTree& tree) {
    std::vector<size_t> parents(tree.nodes().size(), ExpressionNode::NONE);
    for (size_t place = 0; place < parents.size(); ++place) {
      const ExpressionNode& node = tree.node(place);
      if (!node.isOperand()) parents[node.left] = parents[node.right] = place;
    }
    return parents;
  }

  // Whether the && or || at `place` is to be asked. Of several in a row it is the last. Those that
  // a condition consists of are what the whole is: neither never true nor always.
  static bool isAsked(const ExpressionTree& tree, const std::vector<size_t>& parents, size_t place,
                      ExpressionPurpose purpose) {
    const size_t parent = parents[place];
    if (parent == ExpressionNode::NONE) return purpose == FOR_VALUE;
    return tree.node(parent).token->kind != tree.node(place).token->kind;
  }

  // Tells that an && is never true, or an || always, though none of its parts is told of. Returns
  // whether that is so.
  bool askGroup(const CompiledExpression& part, const TextPlace& at, int32_t code) {
    if (part.sources.empty() || explained_.usesMisspelt(part)) return false;
    for (const ComparedValue& compared : comparedValues(proof_, part.expression)) {
      if (isToldOfStandard(proof_, compared)) return true;
    }
    const bool isAnd = code == OP_LOGICAL_AND;
    const Verdict verdict = proof_.decide(
        {&subject_, {{{&part, isAnd ? WANT_TRUE : WANT_UNTRUE}}}, seesIndices_}, ANY_VARIANT);
    if (verdict == VERDICT_POSSIBLE) return false;
    Finding finding{"dead-comparison", at,
                    isAnd ? "these are never true together" : "one of these is always true"};
    if (verdict == VERDICT_UNDECIDED) {
      proof_.addUndecided(std::move(finding));
      return false;
    }
    proof_.add(std::move(finding));
    return true;
  }

  // Tells that `part` is never true or always true. Returns whether that is so, or told of
  // otherwise.
  bool askPart(const CompiledExpression& part, const TextPlace& at) {
    if (explained_.usesMisspelt(part)) return true;
    for (const ComparedValue& compared : comparedValues(proof_, part.expression)) {
      if (isToldOfStandard(proof_, compared)) return true;
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
        return true;
      }
      if (!undecided) undecided = std::move(finding);
    }
    if (undecided) proof_.addUndecided(*std::move(undecided));
    return false;
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
