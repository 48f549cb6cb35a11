#include "sw/parm/statement_text.h"

#include <optional>

#include "base/number.h"
#include "deflang/expression/expression_text.h"

namespace {

bool isAlwaysTrue(const Program& condition) {
  return !condition.usesVariables() && condition.isTrue(SituationView());
}

// The keyword with the condition behind it.
std::string headText(std::string_view keyword, const Program& condition,
                     const Variables& variables) {
  std::string text(keyword);
  if (!isAlwaysTrue(condition)) text += " (" + expressionText(condition, variables) + ")";
  return text;
}

void addItem(std::string& list, const std::string& item) {
  if (!list.empty()) list += ", ";
  list += item;
}

// A value: a constant as it is, an expression in parentheses.
std::string valueText(const Program& value, const Variables& variables) {
  const std::string text = expressionText(value, variables);
  return value.usesVariables() || value.steps().size() > 1 ? "(" + text + ")" : text;
}

std::string itemText(const BoundsExpression::Item& item, const Variables& variables) {
  const std::string lower = valueText(item.lower, variables);
  return item.upper ? lower + ".." + valueText(*item.upper, variables) : lower;
}

// A value as a statement has it that knows no type: a number in decimal may be bare.
std::string bareOrQuoted(const std::string& value) {
  const std::optional<int32_t> number = wholeNumber(value);
  const bool isBare = number && *number >= 0 && numberText(*number) == value;
  return isBare ? value : quotedText(value);
}

}  // namespace

std::string controlText(std::string_view keyword, const Program& condition,
                        const Variables& variables) {
  return std::string(keyword) + " (" + expressionText(condition, variables) + ")";
}

std::string defaultText(const Program& condition, const Program& value,
                        const Variables& variables) {
  return headText("default", condition, variables) + " { " + valueText(value, variables) + " }";
}

std::string fallbackText(const std::string& value) {
  const std::optional<int32_t> number = wholeNumber(value);
  const bool isBare = number && numberText(*number) == value;
  return "default { " + (isBare ? value : quotedText(value)) + " }";
}

std::string rangeText(std::string_view keyword, const ConditionalBounds& bounds,
                      const Variables& variables) {
  std::string items;
  if (bounds.constant != nullptr) items = rangeItemsText(*bounds.constant);
  if (bounds.computed != nullptr) {
    for (const BoundsExpression::Item& item : bounds.computed->items()) {
      addItem(items, itemText(item, variables));
    }
  }
  return headText(keyword, bounds.condition, variables) + " { " + items + " }";
}

std::string baseText(const BoundsParm& bounds) {
  return "rangeValid { " + rangeItemsText(bounds) + " }";
}

std::string translationText(const std::string& source, const std::string& target) {
  return "valueChange { " + bareOrQuoted(source) + " -> " + bareOrQuoted(target) + " }";
}

std::string rangeItemsText(const BoundsParm& bounds) {
  std::string items;
  for (const auto& [low, high] : bounds.integers().spans()) {
    addItem(items, low == high ? numberText(low) : numberText(low) + ".." + numberText(high));
  }
  const BoundsString& strings = bounds.strings();
  if (!strings.texts().empty()) addItem(items, quotedText(strings.correction()));
  for (const std::string& text : strings.texts()) {
    if (text != strings.correction()) addItem(items, quotedText(text));
  }
  return items;
}
