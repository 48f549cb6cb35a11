#include "sw/parm/build/build_ranges.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <utility>
#include <vector>

#include "sw/parm/build/classify.h"
#include "sw/parm/build/range_items.h"

namespace {

// A statement that counts in some situation.
struct Range {
  StatementPlace place;
  std::optional<Program> condition;  // nullopt where it always counts
  RangeItems items;
};

// Whether a statement counts in any situation. If it does not, its items are not looked at.
bool canApply(const RangeStatement& statement, const Condition& condition, DefinitionDraft& draft) {
  if (condition.kind == CONDITION_NEVER && !condition.namesConstant) {
    draft.warn(DIAG_CONDITION_ZERO, tokenPosition(statement.condition, 1));
    draft.context().note(-1);
  }
  return condition.kind == CONDITION_ALWAYS || condition.kind == CONDITION_RUN_TIME;
}

std::vector<Range> classifyStatements(const StatementList<RangeStatement>& statements,
                                      DefinitionDraft& draft) {
  std::vector<Range> ranges;
  for (const auto& statement : statements) {
    Condition condition = classifyCondition(statement.condition, draft);
    if (!canApply(statement, condition, draft)) continue;
    Range& range = ranges.emplace_back();
    range.place = statement.place;
    if (condition.kind == CONDITION_RUN_TIME) {
      range.condition = draft.keep(statement.condition, std::move(condition.compiled));
    }
    range.items = classifyItems(statement.items, draft);
  }
  return ranges;
}

void append(RangeItems& set, RangeItems items) {
  set.runTime = set.runTime || items.runTime;
  std::move(items.items.begin(), items.items.end(), std::back_inserter(set.items));
}

bool isRunTimeSet(const std::vector<Range>& ranges) {
  return std::any_of(ranges.begin(), ranges.end(),
                     [](const Range& range) { return !range.condition && range.items.runTime; });
}

ConditionalBounds conditional(Program condition, RangeItems items) {
  return {std::move(condition), makeBounds(std::move(items)), nullptr};
}

}  // namespace

void buildRangeValid(DefinitionDraft& draft) {
  std::vector<Range> ranges = classifyStatements(draft.record().rangeValid, draft);
  std::vector<ConditionalBounds>& bounds = draft.parts.conditionalBounds;
  const bool isRunTime = isRunTimeSet(ranges);
  RangeItems set;
  std::optional<size_t> place;  // of the set, among the conditional bounds
  for (Range& range : ranges) {
    if (range.condition) {
      bounds.push_back(conditional(*std::move(range.condition), std::move(range.items)));
      draft.lines.ranges.push_back(range.place);
      continue;
    }
    if (range.items.runTime && !place) {
      place = bounds.size();
      bounds.emplace_back();
      draft.lines.ranges.push_back(range.place);
    }
    if (!range.items.runTime) {
      draft.lines.inBase.push_back(range.place);
      addConstants(range.items.items, draft.parts.baseBounds);
    }
    if (isRunTime) {
      draft.lines.inSet.push_back(range.place);
      append(set, std::move(range.items));
    }
  }
  if (place) bounds[*place] = conditional(Program::constant(1), std::move(set));
}

void buildRangeDoc(DefinitionDraft& draft) {
  std::vector<Range> ranges = classifyStatements(draft.record().rangeDoc, draft);
  std::vector<ConditionalBounds>& documented = draft.parm.documentedRanges;
  std::optional<RangeItems> set;
  StatementPlace first;  // of the set
  for (Range& range : ranges) {
    if (range.condition) {
      documented.push_back(conditional(*std::move(range.condition), std::move(range.items)));
      draft.lines.documented.push_back(range.place);
      continue;
    }
    if (!set) {
      set.emplace();
      first = range.place;
    }
    draft.lines.inDocumentedSet.push_back(range.place);
    append(*set, std::move(range.items));
  }
  if (!set) return;
  documented.push_back(conditional(Program::constant(1), *std::move(set)));
  draft.lines.documented.push_back(first);
}
