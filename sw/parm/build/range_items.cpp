#include "sw/parm/build/range_items.h"

#include <cassert>
#include <string>
#include <utility>

#include "sw/parm/build/classify.h"

namespace {

// Makes items of bounds from range items, and adds them to `out`.
class ItemReader {
 public:
  ItemReader(DefinitionDraft& draft, RangeItems& out) : draft_(draft), out_(out) {}

  void read(const RangeItem& item) {
    if (item.text) {
      readText(item);
    } else if (item.lower.empty() || (item.upper && item.upper->empty())) {
      refuse(item);
    } else if (item.upper) {
      readSpan(item);
    } else {
      readValue(item);
    }
  }

 private:
  void readText(const RangeItem& item) {
    if (item.text->empty()) return refuse(item);
    out_.items.push_back({Program::constant(std::string(*item.text)), std::nullopt, true});
  }

  void readValue(const RangeItem& item) {
    Classification value = classifyValue(item.lower, draft_);
    if (value.decision == LEFT_OUT) return;
    out_.items.push_back({limit(item.lower, std::move(value)), std::nullopt});
  }

  void readSpan(const RangeItem& item) {
    Classification lower = classifyValue(item.lower, draft_);
    Classification upper = classifyValue(*item.upper, draft_);
    if (lower.decision == LEFT_OUT || upper.decision == LEFT_OUT) return;
    if (!isSpan(lower, upper)) return refuse(item);
    Program low = limit(item.lower, std::move(lower));
    out_.items.push_back({std::move(low), limit(*item.upper, std::move(upper))});
  }

  // Whether two ends can make a span in some situation.
  static bool isSpan(const Classification& lower, const Classification& upper) {
    if (isText(lower) || isText(upper)) return false;
    const bool isConstant = lower.decision == DECIDED && upper.decision == DECIDED;
    return !isConstant || lower.value.number <= upper.value.number;
  }

  static bool isText(const Classification& end) {
    return end.decision == DECIDED && !end.value.isNumber();
  }

  Program limit(const Expression& expression, Classification classified) {
    if (classified.decision == RUN_TIME) {
      out_.runTime = true;
      return draft_.keep(expression, std::move(classified.compiled));
    }
    return Program::constant(std::move(classified.value));
  }

  void refuse(const RangeItem& item) {
    draft_.error(DIAG_INVALID_RANGE, item.at, draft_.recordText());
  }

  DefinitionDraft& draft_;
  RangeItems& out_;
};

BoundsExpression makeExpression(std::vector<BoundsExpression::Item> items) {
  BoundsExpression bounds;
  for (BoundsExpression::Item& item : items) bounds.addItem(std::move(item));
  assert(bounds.isConsistent());
  return bounds;
}

}  // namespace

RangeItems classifyItems(std::span<const RangeItem> items, DefinitionDraft& draft) {
  RangeItems classified;
  ItemReader reader(draft, classified);
  for (const RangeItem& item : items) reader.read(item);
  return classified;
}

void addConstants(const std::vector<BoundsExpression::Item>& items, BoundsParm& out) {
  const int failed = BoundsExpression::evaluate(out, items, SituationView());
  assert(failed == 0);
}

std::unique_ptr<Bounds> makeBounds(RangeItems items) {
  if (items.runTime) {
    return std::make_unique<BoundsExpression>(makeExpression(std::move(items.items)));
  }
  auto constants = std::make_unique<BoundsParm>();
  addConstants(items.items, *constants);
  return constants;
}
