// Range items: the items of one range statement, told apart into constants and run-time ones.
#pragma once

#include <memory>
#include <span>
#include <vector>

#include "deflang/text/record.h"
#include "sw/parm/bounds.h"
#include "sw/parm/build/definition_draft.h"

struct RangeItems {
  std::vector<BoundsExpression::Item> items;  ///< in text order
  bool runTime = false;                       ///< whether one of them is computed at run time
};

/// Classifies `items`. One that is no value and no span is reported as an error and left out.
RangeItems classifyItems(std::span<const RangeItem> items, DefinitionDraft& draft);

/// Adds items, none of them a run-time one, to `out`.
void addConstants(const std::vector<BoundsExpression::Item>& items, BoundsParm& out);

/// Bounds that are computed where an item is a run-time one.
std::unique_ptr<Bounds> makeBounds(RangeItems items);
