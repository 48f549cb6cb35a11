// Scales: ranges of numbers as bars, which show where values lie and where gaps are.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "doc/model.h"

/// The numbers from the lowest to the highest that the constant spans of `ranges` have, so that the
/// bars of several ranges compare; nothing where there are none, or only one number.
std::optional<Span> extentOf(const std::vector<DocRange>& ranges);

/// Adds the spans of `range` as a bar between the ends of `extent`, as an SVG picture for the eye
/// only; with a mark at `mark` where that is given. Nothing without spans.
void appendScale(std::string& html, const DocRange& range, const Span& extent,
                 std::optional<int> mark);
