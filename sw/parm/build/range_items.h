// Range items: the items of one range statement, told apart into constants and run-time ones.
#pragma once

#include <memory>
#include <span>
#include <vector>

#include "deflang/text/record.h"
#include "sw/parm/bounds.h"
#include "sw/parm/build/definition_draft.h"

/// Items that have been classified, of one range statement or of several that are one set.
struct RangeItems {
  std::vector<BoundsExpression::Item> items;  ///< in text order
  bool runTime = false;                       ///< whether one of them is computed at run time
};

/// Classifies `items`, and keeps the expressions of those that are computed at run time in `draft`.
/// An item that is neither a value nor a span is reported as an error and left out: "" and (), an
/// end of a span that is a text, a span of constants that goes down (9..0), an expression without a
/// value.
RangeItems classifyItems(std::span<const RangeItem> items, DefinitionDraft& draft);

/// Adds constant items to `out`, in their order: the first text becomes the correction, unless
/// `out` has one. A run-time item here is a programming error.
void addConstants(const std::vector<BoundsExpression::Item>& items, BoundsParm& out);

/// The bounds of `items`: a BoundsExpression, which is computed in each situation, where any of
/// them is a run-time one; otherwise a BoundsParm. Never null.
std::unique_ptr<Bounds> makeBounds(RangeItems items);
