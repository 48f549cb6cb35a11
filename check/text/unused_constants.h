// Unused constants: those of the command line that no expression of the text names.
#pragma once

#include <set>
#include <string>

#include "check/text/findings.h"
#include "check/text/text_facts.h"

/// What the expressions of a text name, without "vidStd::" and figures.
std::set<std::string_view> namesInExpressions(const TextFacts& facts);

/// Adds a finding without a place for each of `constants` that has no effect; none where a part of
/// the text was not understood. Those in `told` have been told of.
void addUnusedConstants(const TextFacts& facts, const NamedValues& constants,
                        const std::set<std::string>& told, Findings& findings);
