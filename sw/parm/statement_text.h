// Statement text: what a definition holds, written as statements of a definition text again, in one
// spacing and order. Read again, each statement means the same.
//
// A condition that is constantly true is left out. Expressions have the slots of `variables`.
#pragma once

#include <string>
#include <string_view>

#include "sw/parm/parm_def.h"

/// `ctrlRO (CONDITION)`, with the keyword that is given.
std::string controlText(std::string_view keyword, const Program& condition,
                        const Variables& variables);
/// `default (CONDITION) { VALUE }`.
std::string defaultText(const Program& condition, const Program& value, const Variables& variables);
/// `default { "auto" }`: of the text or number that counts while no condition is true.
std::string fallbackText(const std::string& value);
/// `rangeValid (CONDITION) { ITEM, ... }`, with the keyword that is given; as rangeItemsText() of
/// constant bounds.
std::string rangeText(std::string_view keyword, const ConditionalBounds& bounds,
                      const Variables& variables);
/// `rangeValid { 0..9, "auto" }`: of the base bounds.
std::string baseText(const BoundsParm& bounds);
/// `valueChange { "auto" -> 7 }`.
std::string translationText(const std::string& source, const std::string& target);

/// The items of bounds: spans, ascending, then texts, of which the correction comes first and the
/// others ascend: `0..9, 20..29, "auto", "off"`.
std::string rangeItemsText(const BoundsParm& bounds);
