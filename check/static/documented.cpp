#include <algorithm>

#include "base/number.h"
#include "check/static/static_bounds.h"
#include "check/static/static_checks.h"
#include "check/static/token_place.h"

namespace {

class DocumentedCheck {
 public:
  DocumentedCheck(StaticContext& context, const NamedDefinition& definition, const IndexDef& built)
      : context_(context), definition_(definition), built_(built) {}

  void check() {
    if (hasRunTimeRange(built_)) return;
    for (const RangeStatement& statement : definition_.record->rangeDoc) {
      if (isLeftOut(statement)) continue;
      for (const RangeItem& item : statement.items) checkItem(item);
    }
  }

 private:
  [[nodiscard]] bool isLeftOut(const RangeStatement& statement) const {
    if (statement.condition.empty()) return false;
    const std::optional<Value> condition = context_.decidedCondition(statement.condition);
    return condition && !condition->isTrue();
  }

  void checkItem(const RangeItem& item) {
    for (const std::string& value : valuesToTry(item)) {
      std::string translated = value;
      built_.translate(translated);
      if (!isOutside(built_, translated)) continue;
      tell(item, value);
      return;
    }
  }

  // The values of an item, where constants tell them; of a span, those from which on another value
  // may be allowed: its ends and the numbers beside the ends of the ranges.
  [[nodiscard]] std::vector<std::string> valuesToTry(const RangeItem& item) const {
    if (item.text) return {std::string(*item.text)};
    const std::optional<Value> low = context_.decidedValue(item.lower);
    if (!low) return {};
    if (!item.upper) return {low->asText()};
    const std::optional<Value> high = context_.decidedValue(*item.upper);
    if (!high || !low->isNumber() || !high->isNumber()) return {};
    std::vector<int64_t> numbers = {low->number, high->number};
    addBeside(built_.baseBounds(), numbers);
    for (const ConditionalBounds& bounds : built_.conditionalBounds()) {
      addBeside(*bounds.constant, numbers);
    }
    std::ranges::sort(numbers);
    std::vector<std::string> values;
    for (const int64_t number : numbers) {
      if (number < low->number || number > high->number) continue;
      values.push_back(numberText(static_cast<int32_t>(number)));
    }
    return values;
  }

  static void addBeside(const BoundsParm& bounds, std::vector<int64_t>& numbers) {
    for (const auto& [low, high] : bounds.integers().spans()) {
      numbers.push_back(int64_t{low} - 1);
      numbers.push_back(int64_t{high} + 1);
    }
  }

  void tell(const RangeItem& item, const std::string& value) {
    Finding finding = {"doc-outside", itemPlace(context_.source(), item),
                       "the menu offers " + inQuotes(value) +
                           ", which no rangeValid allows; offer only what is allowed"};
    if (!definition_.record->rangeValid.empty()) {
      finding.related.push_back({definition_.keyword("rangeValid", 0), "the allowed values"});
    }
    context_.add(std::move(finding));
  }

  StaticContext& context_;
  const NamedDefinition& definition_;
  const IndexDef& built_;
};

}  // namespace

void checkDocumented(StaticContext& context) {
  for (const NamedDefinition& definition : context.definitions()) {
    if (definition.isIndex() || context.hasExplainedRange(definition)) continue;
    const IndexDef* const built = context.built(definition);
    if (built != nullptr) DocumentedCheck(context, definition, *built).check();
  }
}
