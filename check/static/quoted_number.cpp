#include <algorithm>

#include "base/number.h"
#include "check/static/expression_tree.h"
#include "check/static/static_checks.h"
#include "check/static/token_place.h"
#include "deflang/expression/operators.h"

namespace {

bool isNumberText(std::string_view text) { return !text.empty() && wholeNumber(text).has_value(); }

// Whether a bare number can be written instead, so that nothing else changes.
bool isCanonical(std::string_view text) {
  const std::optional<int32_t> number = wholeNumber(text);
  return number && numberText(*number) == text;
}

bool isOrder(int32_t code) {
  return code == OP_LESS || code == OP_GREATER || code == OP_LESS_EQUAL || code == OP_GREATER_EQUAL;
}
bool isEquality(int32_t code) { return code == OP_EQUAL || code == OP_NOT_EQUAL; }

// Whether a record's ranges allow numbers only, as far as they are written down.
bool holdsNumbers(const ParameterRecord& record) {
  bool hasSpan = false;
  for (const RangeStatement& range : record.rangeValid) {
    for (const RangeItem& item : range.items) {
      if (item.text) return false;
      const std::span<const Token> tokens = item.lower.tokens;
      const bool isNumber = tokens.size() == 1 && tokens.front().kind == TOKEN_NUMBER;
      if (!item.upper && !isNumber) return false;
      hasSpan = true;
    }
  }
  return hasSpan;
}

class QuotedNumberCheck {
 public:
  explicit QuotedNumberCheck(StaticContext& context) : context_(context) {}

  void check(const NamedDefinition& definition) {
    checkRanges(definition.record->rangeValid, &definition.record->defaults);
    checkRanges(definition.record->rangeDoc, nullptr);
    forEachExpression(*definition.record, [&](ExpressionUse /*use*/, const Expression& expression) {
      if (hasQuotedNumber(expression)) checkExpression(expression);
    });
  }

 private:
  // The statements without a condition are one range, each of the others is one by itself.
  void checkRanges(const StatementList<RangeStatement>& statements,
                   const StatementList<DefaultStatement>* defaults) {
    const RangeItem* number = nullptr;
    for (const RangeStatement& statement : statements) {
      if (statement.condition.empty() && number == nullptr) number = numberIn(statement);
    }
    for (const RangeStatement& statement : statements) {
      checkItems(statement, statement.condition.empty() ? number : numberIn(statement), defaults);
    }
  }

  // An item that brings a number into the range in any case; null where there is none.
  [[nodiscard]] const RangeItem* numberIn(const RangeStatement& statement) const {
    for (const RangeItem& item : statement.items) {
      if (item.text) continue;
      if (item.upper) return &item;
      const std::optional<Value> value = context_.decidedValue(item.lower);
      if (value && (value->isNumber() || isNumberText(value->text))) return &item;
    }
    return nullptr;
  }

  void checkItems(const RangeStatement& statement, const RangeItem* number,
                  const StatementList<DefaultStatement>* defaults) {
    if (number == nullptr) return;
    for (const RangeItem& item : statement.items) {
      if (!item.text || !isNumberText(*item.text)) continue;
      const TextPlace at = valuePlace(context_.source(), item.at);
      Finding finding = {"quoted-number",
                         at,
                         inQuotes(*item.text) +
                             " in quotes cannot be chosen beside a number of the range; write " +
                             numberText(*wholeNumber(*item.text)),
                         {{itemPlace(context_.source(), *number), "the number"}}};
      propose(finding, *item.text);
      if (defaults != nullptr) relateDefaults(finding, *item.text, *defaults);
      context_.add(std::move(finding));
      context_.explained().add(item.at);
    }
  }

  // A default that cannot be kept either is wrong wherever it counts.
  void relateDefaults(Finding& finding, std::string_view text,
                      const StatementList<DefaultStatement>& defaults) const {
    for (const DefaultStatement& value : defaults) {
      if (value.text != text) continue;
      finding.related.push_back(
          {valuePlace(context_.source(), value.at), "so this default becomes another value"});
      finding.level = LEVEL_ERROR;
    }
  }

  static bool hasQuotedNumber(const Expression& expression) {
    return std::ranges::any_of(expression.tokens, isQuotedNumber);
  }
  static bool isQuotedNumber(const Token& token) {
    return token.kind == TOKEN_STRING && isNumberText(token.text);
  }

  void checkExpression(const Expression& expression) {
    const std::optional<ExpressionTree> tree = ExpressionTree::make(expression);
    if (!tree) return;
    std::vector<bool> numbers;  // by node: whether it is a number in any case
    for (const ExpressionNode& node : tree->nodes()) {
      numbers.push_back(isNumber(node, numbers));
      if (node.isOperand()) continue;
      const Token& left = *tree->node(node.left).token;
      const Token& right = *tree->node(node.right).token;
      checkSide(*node.token, left, right, numbers[node.right]);
      checkSide(*node.token, right, left, numbers[node.left]);
    }
  }

  [[nodiscard]] bool isNumber(const ExpressionNode& node, const std::vector<bool>& numbers) const {
    const Token& token = *node.token;
    if (token.kind == TOKEN_NUMBER) return true;
    if (token.kind == TOKEN_VARIABLE) {
      const Reference reference = context_.referenceOf(token);
      if (reference.figure != nullptr) return true;
      return reference.named != nullptr && holdsNumbers(*reference.named->record);
    }
    if (node.isOperand()) return false;
    return token.kind != OP_ADD || (numbers[node.left] && numbers[node.right]);
  }

  void checkSide(const Token& sign, const Token& side, const Token& other, bool otherIsNumber) {
    if (!isQuotedNumber(side)) return;
    if (isOrder(sign.kind)) {
      tell(side,
           " in quotes is a text, which is compared byte by byte, so 9 is not less than \"10\"; "
           "write " +
               numberText(*wholeNumber(side.text)));
    } else if (sign.kind == OP_ADD && otherIsNumber) {
      tell(side, " in quotes is a text, which is appended and not added; write " +
                     numberText(*wholeNumber(side.text)));
    } else if (isEquality(sign.kind) && (otherIsNumber || other.kind == TOKEN_VARIABLE) &&
               !isCanonical(side.text)) {
      // A value of that text is a number, and a number is compared as its decimal text.
      tell(side, " in quotes is a text, which no value equals, as such a value is the number " +
                     numberText(*wholeNumber(side.text)) + "; write it without quotes");
    }
  }

  void tell(const Token& token, const std::string& text) {
    const TextPlace at = tokenPlace(context_.source(), token);
    Finding finding = {"quoted-number", at, inQuotes(token.text) + text};
    propose(finding, token.text);
    context_.add(std::move(finding));
    context_.explained().add(token.at);
  }

  static void propose(Finding& finding, std::string_view text) {
    const bool isWhole = finding.at.length == text.size() + 2;  // not over several lines
    if (isWhole && isCanonical(text)) finding.proposal = Proposal{finding.at, std::string(text)};
  }

  StaticContext& context_;
};

}  // namespace

void checkQuotedNumbers(StaticContext& context) {
  QuotedNumberCheck check(context);
  for (const NamedDefinition& definition : context.definitions()) check.check(definition);
}
