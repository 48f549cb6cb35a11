// Unused constants: those of the command line that no expression of the text names.
#pragma once

#include "check/text/findings.h"
#include "check/text/text_facts.h"

/// Adds a finding without a place for each of `constants` that has no effect; none where a part of
/// the text was not understood.
void addUnusedConstants(const TextFacts& facts, const NamedValues& constants, Findings& findings);
