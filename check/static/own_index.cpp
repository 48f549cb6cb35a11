#include "check/static/expression_tree.h"
#include "check/static/static_checks.h"
#include "check/static/token_place.h"
#include "deflang/expression/operators.h"

namespace {

// Whether the missing value of `token` leaves `expression` without a result, whatever the other
// operands are. Some operators can do without it, where the other side decides.
bool needsValue(const Expression& expression, const Token& token) {
  const std::optional<ExpressionTree> tree = ExpressionTree::make(expression);
  if (!tree) return false;
  const auto isAbsorbing = [](int32_t code) {
    return absorb(code, 0) || absorb(code, 1) || absorb(code, -1);
  };
  for (const ExpressionNode& node : tree->nodes()) {
    if (node.isOperand() || !isAbsorbing(node.token->kind)) continue;
    if (tree->node(node.left).token == &token || tree->node(node.right).token == &token) {
      return false;
    }
  }
  return true;
}

class OwnIndexCheck {
 public:
  explicit OwnIndexCheck(StaticContext& context) : context_(context) {}

  void check(const NamedDefinition& definition) {
    forEachExpression(*definition.record, [&](ExpressionUse use, const Expression& expression) {
      bool told = false;
      for (const Token& token : expression.tokens) {
        if (token.kind != TOKEN_VARIABLE || !isUnknown(token, definition, use)) continue;
        if (!std::exchange(told, true)) tell(definition, use, expression, token);
        context_.explained().add(token.at);
      }
    });
  }

 private:
  // Whether the token is an index whose value is bound only later.
  [[nodiscard]] bool isUnknown(const Token& token, const NamedDefinition& definition,
                               ExpressionUse use) const {
    const Reference reference = context_.referenceOf(token);
    if (reference.figure != nullptr || reference.named == nullptr) return false;
    if (!reference.named->isIndex()) return false;
    if (definition.isIndex()) return reference.named == &definition;
    return use == USE_CTRL_VALID;
  }

  void tell(const NamedDefinition& definition, ExpressionUse use, const Expression& expression,
            const Token& token) {
    const std::string_view where = use == USE_CTRL_VALID ? "ctrlValid" : "its own ranges";
    std::string text = inQuotes(token.text) + " has no value in " + std::string(where) +
                       ", which " + (use == USE_CTRL_VALID ? "is" : "are") +
                       " judged before the index value is known";
    if (isCondition(use) && needsValue(expression, token)) text += ", so this is never true";
    text += definition.isIndex() ? "; list the values in a range without a condition"
                                 : "; use ctrlRO or a range with a condition instead";
    context_.add({"own-index", tokenPlace(context_.source(), token), std::move(text)});
  }

  static bool isCondition(ExpressionUse use) {
    return use == USE_CTRL_VALID || use == USE_RANGE_CONDITION;
  }

  StaticContext& context_;
};

}  // namespace

void checkOwnIndices(StaticContext& context) {
  OwnIndexCheck check(context);
  for (const NamedDefinition& definition : context.definitions()) check.check(definition);
}
