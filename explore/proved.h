// Proved: what of a text cannot be reached, as the checker proves.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "check/text/variant.h"
#include "coverage/text_coverage.h"

/// Asks the checker for statements that are never chosen, and for conditions that are always or
/// never true, in all variants, and takes them out of `coverage`, which is of the text `text`. What
/// is not proved after `seconds` stays. Returns how many things were taken out.
size_t leaveOutProved(const std::string& text, const ConstantChoices& choices, uint32_t seconds,
                      TextCoverage& coverage);
