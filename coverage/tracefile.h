// Reports of text coverage: the tracefile of lcov, and lines for people.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "coverage/text_coverage.h"

/// The tracefile, which genhtml and editors show: definitions as functions, conditions as branches
/// (0 is true, 1 is false), statements as lines. A line of several statements, or of a statement
/// and a name, counts as often as the one of them that was reached least. `source` is the name of
/// the text's file. What cannot be reached is left out.
std::string tracefile(const TextCoverage& coverage, std::string_view source);

/// "87.5 % of device.ostrel: 5 of 6 statements, 1 of 2 outcomes of conditions, 2 of 2 definitions";
/// 100.0 % only where nothing is missing.
std::string coverageSummary(const TextCoverage& coverage, std::string_view source);

/// A line for each thing that was not reached, in the order of the text: "device.ostrel:7: gain:
/// the condition of rangeValid was never false".
std::vector<std::string> missingCoverage(const TextCoverage& coverage, std::string_view source);
