#include <algorithm>
#include <map>
#include <unordered_map>

#include "base/number.h"
#include "check/static/expression_tree.h"
#include "check/static/static_checks.h"
#include "check/static/token_place.h"
#include "deflang/expression/operators.h"

namespace {

bool isOneOf(int32_t code, std::initializer_list<int32_t> codes) {
  return std::ranges::find(codes, code) != codes.end();
}
bool isEquality(int32_t code) { return isOneOf(code, {OP_EQUAL, OP_NOT_EQUAL}); }
bool isOrder(int32_t code) {
  return isOneOf(code, {OP_LESS, OP_GREATER, OP_LESS_EQUAL, OP_GREATER_EQUAL});
}
bool isComparison(int32_t code) { return isEquality(code) || isOrder(code); }
bool isBitwise(int32_t code) { return isOneOf(code, {OP_BIT_AND, OP_BIT_OR, OP_BIT_XOR}); }
bool isLogical(int32_t code) { return isOneOf(code, {OP_LOGICAL_AND, OP_LOGICAL_OR}); }
bool isSum(int32_t code) { return isOneOf(code, {OP_ADD, OP_SUBTRACT}); }

bool givesFlag(int32_t code) {
  return isComparison(code) || isLogical(code) || code == OP_CONTAINS;
}

bool isFlagNumber(int32_t number) { return number == 0 || number == 1; }

// The number of an item's end, where it is written as one.
std::optional<int32_t> literalOf(const Expression& expression) {
  const std::span<const Token> tokens = expression.tokens;
  if (tokens.size() != 1 || tokens.front().kind != TOKEN_NUMBER) return std::nullopt;
  return tokens.front().number;
}

// Whether an item's end is 0 or 1 in any case: one of these, or what a condition gives.
bool isFlagEnd(const Expression& end) {
  const std::optional<int32_t> number = literalOf(end);
  if (number) return isFlagNumber(*number);
  const std::optional<ExpressionTree> tree = ExpressionTree::make(end);
  return tree && givesFlag(tree->nodes().back().token->kind);
}

// Whether a parameter holds nothing but 0 and 1.
bool isFlag(const ParameterRecord& record) {
  bool hasItems = false;
  for (const RangeStatement& range : record.rangeValid) {
    for (const RangeItem& item : range.items) {
      hasItems = true;
      if (item.text || !isFlagEnd(item.lower)) return false;
      if (item.upper && !isFlagEnd(*item.upper)) return false;
    }
  }
  return hasItems;
}

// Which parameters hold nothing but 0 and 1; each is looked at once.
class Flags {
 public:
  bool contains(const ParameterRecord& record) {
    const auto [known, isNew] = known_.emplace(&record, false);
    if (isNew) known->second = isFlag(record);
    return known->second;
  }

 private:
  std::unordered_map<const ParameterRecord*, bool> known_;
};

class PrecedenceCheck {
 public:
  PrecedenceCheck(StaticContext& context, Flags& flagParameters, const Token& first,
                  const ExpressionTree& tree)
      : context_(context), flagParameters_(flagParameters), first_(first), tree_(tree) {}

  void check() {
    for (const ExpressionNode& node : tree_.nodes()) {
      flags_.push_back(isFlagNode(node));
      if (node.isOperand()) continue;
      const int32_t code = node.token->kind;
      if (isBitwise(code)) checkBitwise(node);
      if (isOneOf(code, {OP_SHIFT_LEFT, OP_SHIFT_RIGHT})) checkShift(node);
      if (isComparison(code)) checkChain(node);
      if (isEquality(code)) checkAlternatives(node);
      if (isLogical(code)) checkAlternative(node);
      if (code == OP_LOGICAL_OR) checkMixture(node);
    }
  }

 private:
  // Whether a node is 0 or 1 in any case, so that & and | are as good as && and || for it.
  [[nodiscard]] bool isFlagNode(const ExpressionNode& node) const {
    const Token& token = *node.token;
    if (token.kind == TOKEN_NUMBER) return isFlagNumber(token.number);
    if (token.kind == TOKEN_VARIABLE) {
      // A range that could not be read may have been that of a flag.
      if (context_.checked().text.isBroken) return true;
      const Reference reference = context_.referenceOf(token);
      return reference.figure == nullptr && reference.named != nullptr &&
             !reference.named->isIndex() && flagParameters_.contains(*reference.named->record);
    }
    if (node.isOperand()) return false;
    if (givesFlag(token.kind)) return true;
    if (!isBitwise(token.kind)) return false;
    return (flags_[node.left] && flags_[node.right]) ||
           (token.kind == OP_BIT_AND && (flags_[node.left] || flags_[node.right]));
  }

  [[nodiscard]] bool isBare(const ExpressionNode& node, bool (*isKind)(int32_t)) const {
    return !node.isOperand() && !node.isGrouped && isKind(node.token->kind);
  }
  [[nodiscard]] TextPlace placeOf(const ExpressionNode& node) const {
    return tree_.place(context_.source(), node);
  }
  [[nodiscard]] std::string textOf(const ExpressionNode& node) const {
    return std::string(textAt(context_.source(), placeOf(node)));
  }
  [[nodiscard]] std::string signOf(const ExpressionNode& node) const {
    return std::string(textAt(context_.source(), tokenPlace(context_.source(), *node.token)));
  }

  // mask & 8 == 0
  void checkBitwise(const ExpressionNode& node) {
    const ExpressionNode& left = tree_.node(node.left);
    const ExpressionNode& right = tree_.node(node.right);
    if (isBare(right, isComparison) && !flags_[node.left]) {
      tellTighter(node, right, left, tree_.node(right.left));
    } else if (isBare(left, isComparison) && !flags_[node.right]) {
      tellTighter(node, left, tree_.node(left.right), right);
    }
  }

  // a << 8 + b, and b + a << 8
  void checkShift(const ExpressionNode& node) {
    const ExpressionNode& left = tree_.node(node.left);
    const ExpressionNode& right = tree_.node(node.right);
    if (isBare(right, isSum)) {
      tellTighter(node, right, left, tree_.node(right.left));
    } else if (node.token->kind == OP_SHIFT_LEFT && isBare(left, isSum)) {
      tellTighter(node, left, tree_.node(left.right), right);
    }
  }

  // `inner` is a side of `node`; `from` and `to` are what may be meant to belong together.
  void tellTighter(const ExpressionNode& node, const ExpressionNode& inner,
                   const ExpressionNode& from, const ExpressionNode& to) {
    Finding finding = {"precedence", tokenPlace(context_.source(), *node.token), {}};
    const std::string written = textOf(inner);
    finding.text = inQuotes(signOf(inner)) + " binds more tightly than " + inQuotes(signOf(node)) +
                   (written.empty() ? "" : ", so this takes " + written + " as one operand") +
                   "; put what belongs together into parentheses";
    const TextPlace meant = tree_.place(context_.source(), from, to);
    // A fixed count belongs to the shift, and the result of a comparison is not masked.
    const bool isCertain =
        isFixed(*to.token) || (isBitwise(node.token->kind) && isFixed(*from.token));
    if (meant.length > 0 && isCertain) {
      finding.proposal = Proposal{meant, "(" + std::string(textAt(context_.source(), meant)) + ")"};
    }
    add(std::move(finding), node);
  }

  [[nodiscard]] bool isFixed(const Token& token) const {
    if (token.kind == TOKEN_NUMBER) return true;
    return token.kind == TOKEN_VARIABLE && context_.referenceOf(token).named == nullptr;
  }

  // Whether the result of `left` is compared with 0 or 1 on purpose, as in mode == 2 == locked: a
  // number that stands fast is compared with no further value, and a condition is one.
  [[nodiscard]] bool comparesFlags(const ExpressionNode& left, const ExpressionNode& node) const {
    if (!flags_[node.right]) return false;
    return !tree_.node(node.right).isOperand() || isLiteral(*tree_.node(left.right).token);
  }

  static bool isLiteral(const Token& token) {
    return isOneOf(token.kind, {TOKEN_NUMBER, TOKEN_STRING});
  }

  // 0 < x < 10, and a == b == c
  void checkChain(const ExpressionNode& node) {
    const ExpressionNode& left = tree_.node(node.left);
    const bool isOrdered = isOrder(node.token->kind);
    if (!isBare(left, isOrdered ? isOrder : isEquality)) return;
    if (!isOrdered && comparesFlags(left, node)) return;
    const std::string middle = textOf(tree_.node(left.right));
    const std::string right = textOf(tree_.node(node.right));
    Finding finding = {"precedence", tokenPlace(context_.source(), *node.token), {}};
    const std::string written = textOf(left);
    finding.text = "this compares the result of " +
                   (written.empty() ? "the comparison before it" : written) +
                   ", which is 0 or 1; write two comparisons with && between them";
    const TextPlace all = placeOf(node);
    if (all.length > 0) {
      finding.proposal =
          Proposal{all, written + " && " + middle + " " + signOf(node) + " " + right};
    }
    add(std::move(finding), node);
  }

  // mode == 1 || 2
  void checkAlternative(const ExpressionNode& node) {
    const ExpressionNode& literal = tree_.node(node.right);
    if (!isLiteral(*literal.token) || literal.isGrouped) return;
    const ExpressionNode* comparison = &tree_.node(node.left);
    while (isBare(*comparison, isLogical)) comparison = &tree_.node(comparison->right);
    if (!isBare(*comparison, isEquality)) return;
    if (tree_.node(comparison->right).token->kind != literal.token->kind) return;
    const std::string subject = textOf(tree_.node(comparison->left));
    const std::string text = textOf(literal);
    if (subject.empty() || text.empty()) return;
    Finding finding = {"precedence", placeOf(literal), {}};
    finding.text = inQuotes(signOf(*comparison)) + " binds more tightly than " +
                   inQuotes(signOf(node)) + ", so " + text +
                   " is compared with nothing and counts "
                   "as the number " +
                   numberText(numberOf(*literal.token)) + "; write a comparison on this side, too";
    finding.proposal = Proposal{placeOf(literal), subject + " " + signOf(*comparison) + " " + text};
    add(std::move(finding), node);
  }

  // mode == (1 || 2)
  void checkAlternatives(const ExpressionNode& node) {
    const ExpressionNode& all = tree_.node(node.right);
    if (all.isOperand() || !isLogical(all.token->kind)) return;
    const ExpressionNode& first = tree_.node(all.left);
    const ExpressionNode& second = tree_.node(all.right);
    if (!isLiteral(*first.token) || !isLiteral(*second.token)) return;
    const std::string compared = textOf(tree_.node(node.left)) + " " + signOf(node) + " ";
    Finding finding = {"precedence", placeOf(all), {}};
    finding.text = "the result of " + inQuotes(signOf(all)) +
                   " is 0 or 1, and this is compared with it; write a comparison for each value";
    const TextPlace whole = placeOf(node);
    if (whole.length > 0) {
      finding.proposal = Proposal{whole, "(" + compared + textOf(first) + " " + signOf(all) + " " +
                                             compared + textOf(second) + ")"};
    }
    add(std::move(finding), node);
  }

  // mode == 1 || mode == 2 && mode == 3
  void checkMixture(const ExpressionNode& node) {
    for (const size_t side : {node.left, node.right}) {
      const ExpressionNode& both = tree_.node(side);
      if (!isBare(both, isConjunction) || !contradictsItself(both)) continue;
      Finding finding = {"precedence", tokenPlace(context_.source(), *both.token), {}};
      const std::string written = textOf(both);
      finding.text = "\"&&\" binds more tightly than \"||\", so this takes " +
                     (written.empty() ? "what is beside it" : written) +
                     " as one operand, which is never true; write || here, or put what belongs "
                     "together into parentheses";
      add(std::move(finding), both);
    }
  }

  static bool isConjunction(int32_t code) { return code == OP_LOGICAL_AND; }

  // Whether two sides of the conjunctions of `whole` want one name to be two things.
  [[nodiscard]] bool contradictsItself(const ExpressionNode& whole) const {
    std::map<std::string_view, const Token*> wanted;
    const auto contradicts = [&](const ExpressionNode& side) {
      if (side.isOperand() || side.token->kind != OP_EQUAL) return false;
      const Token& name = *tree_.node(side.left).token;
      const Token& literal = *tree_.node(side.right).token;
      if (name.kind != TOKEN_VARIABLE || !isLiteral(literal)) return false;
      const Token& first = *wanted.emplace(name.text, &literal).first->second;
      // A text may be equal to a number.
      return first.kind == literal.kind &&
             (literal.kind == TOKEN_NUMBER ? first.number != literal.number
                                           : first.text != literal.text);
    };
    const ExpressionNode* node = &whole;
    for (; isBare(*node, isConjunction); node = &tree_.node(node->left)) {
      if (contradicts(tree_.node(node->right))) return true;
    }
    return contradicts(*node);
  }

  static int32_t numberOf(const Token& literal) {
    return literal.kind == TOKEN_NUMBER ? literal.number : leadingNumber(literal.text);
  }

  void add(Finding finding, const ExpressionNode& node) {
    context_.explained().add(node.token->at);
    // A condition that the daemon finds to be 0 is so because of it.
    const TextPlace start = tokenPlace(context_.source(), first_);
    Finding* const constant = context_.findings().find("constant-condition", start);
    if (constant == nullptr) return context_.add(std::move(finding));
    constant->related.push_back({finding.at, std::move(finding.text)});
    if (!constant->proposal) constant->proposal = std::move(finding.proposal);
  }

  StaticContext& context_;
  Flags& flagParameters_;
  const Token& first_;  // of the expression
  const ExpressionTree& tree_;
  std::vector<bool> flags_;  // by node
};

}  // namespace

void checkPrecedence(StaticContext& context) {
  Flags flags;
  for (const NamedDefinition& definition : context.definitions()) {
    forEachExpression(*definition.record, [&](ExpressionUse /*use*/, const Expression& expression) {
      if (expression.tokens.size() < 3) return;
      const std::optional<ExpressionTree> tree = ExpressionTree::make(expression);
      if (tree) PrecedenceCheck(context, flags, expression.tokens.front(), *tree).check();
    });
  }
}
