#include "check/static/expression_tree.h"
#include "check/static/static_checks.h"
#include "check/static/token_place.h"
#include "deflang/expression/operators.h"

namespace {

bool isEmptyText(const ExpressionNode& node) {
  return node.token->kind == TOKEN_STRING && node.token->text.empty();
}

// Whether the comparison is ever true: nothing is equal to the empty text or less. `emptyIsLeft`
// tells on which side the empty text is.
bool isEverTrue(int32_t code, bool emptyIsLeft) {
  switch (code) {
    case OP_NOT_EQUAL:
    case OP_CONTAINS:
      return true;
    case OP_LESS:
    case OP_LESS_EQUAL:
      return emptyIsLeft;
    case OP_GREATER:
    case OP_GREATER_EQUAL:
      return !emptyIsLeft;
    default:
      return false;
  }
}

class EmptyTextCheck {
 public:
  explicit EmptyTextCheck(StaticContext& context) : context_(context) {}

  void check(const Expression& expression) {
    if (expression.tokens.size() < 3) return;
    const std::optional<ExpressionTree> tree = ExpressionTree::make(expression);
    if (!tree) return;
    for (const ExpressionNode& node : tree->nodes()) {
      if (node.isOperand() || !comparesTexts(node.token->kind)) continue;
      const ExpressionNode& left = tree->node(node.left);
      const ExpressionNode& right = tree->node(node.right);
      if (isEmptyText(left) == isEmptyText(right)) continue;
      // "" $ x looks for x in the empty text, which nobody writes and a proof can tell.
      if (isEmptyText(left) && node.token->kind == OP_CONTAINS) continue;
      tell(*node.token, *(isEmptyText(left) ? left : right).token, isEmptyText(left));
    }
  }

 private:
  void tell(const Token& comparison, const Token& empty, bool emptyIsLeft) {
    const bool isTrue = isEverTrue(comparison.kind, emptyIsLeft);
    const TextPlace at = tokenPlace(context_.source(), empty);
    Finding finding = {"empty-text", at, {}};
    if (comparison.kind == OP_CONTAINS) {
      finding.text = "every text contains \"\", so this is always true";
    } else {
      finding.text = std::string("this is ") + (isTrue ? "always" : "never") +
                     " true, as a value that is unset or empty counts as the number 0 and not as "
                     "\"\"; compare with 0";
      const bool isEquality = comparison.kind == OP_EQUAL || comparison.kind == OP_NOT_EQUAL;
      if (isEquality && at.length == 2) finding.proposal = Proposal{at, "0"};
    }
    context_.add(std::move(finding));
    context_.explained().add(empty.at);
  }

  StaticContext& context_;
};

}  // namespace

void checkEmptyTexts(StaticContext& context) {
  EmptyTextCheck check(context);
  for (const NamedDefinition& definition : context.definitions()) {
    forEachExpression(*definition.record, [&](ExpressionUse /*use*/, const Expression& expression) {
      check.check(expression);
    });
  }
}
