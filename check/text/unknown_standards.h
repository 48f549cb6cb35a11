// Unknown standards: texts that were most likely meant to select a video standard, and do not.
#pragma once

#include "check/text/findings.h"
#include "check/text/text_facts.h"

/// Whether `text` selects nothing and is nearly the name of a standard or a format.
bool isUnknownStandard(std::string_view text);

/// Adds a finding for each text that a parameter takes or is compared with, where figures are asked
/// of that parameter, and isUnknownStandard() or white space is behind the name. A value that
/// several parameters or statements have is told once.
/// Words that are far from all names, such as "auto", may be meant so.
void addUnknownStandards(const TextFacts& facts, Findings& findings);
